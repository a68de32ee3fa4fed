#ifndef TESTS_DATAFILEBYTES_H
#define TESTS_DATAFILEBYTES_H

#include <QDataStream>
#include <QFile>
#include <QRegularExpression>
#include <QString>
#include <QTest>

/// The fields as little-endian numbers; a float or double takes four bytes.
template<typename... Fields>
QByteArray littleEndian(const Fields&... a_fields)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    (stream << ... << a_fields);
    return bytes;
}

/// Overwrites a file in place: a reader that has it open sees the new contents.
inline void writeFile(const QString& a_sPath, const QByteArray& a_bytes)
{
    QFile file(a_sPath);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(a_bytes), a_bytes.size());
}

/// Makes the running test fail at every trace that expectTrace() has not announced.
inline void failOnTraces()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
}

/// Expects one more trace that matches the regular expression.
inline void expectTrace(const QString& a_sPattern)
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(a_sPattern));
}

/// Opens a valid file. Then makes its contents invalid and opens the same object again.
/// Checks that open() fails, the object is closed, and the error text contains the reason.
template<typename File>
void refuse(const QString& a_sPath, const QByteArray& a_good, const QByteArray& a_bad,
            const QString& a_sReason)
{
    writeFile(a_sPath, a_good);
    File file(a_sPath);
    QVERIFY(file.open());
    writeFile(a_sPath, a_bad);
    expectTrace(QStringLiteral("Cannot open the .*") + QRegularExpression::escape(a_sReason));
    QVERIFY(!file.open());
    QVERIFY(!file.isOpen());
    QVERIFY2(file.errorString().contains(a_sReason), qPrintable(file.errorString()));
    QCOMPARE(file.missingBytes(), 0);
}

#endif

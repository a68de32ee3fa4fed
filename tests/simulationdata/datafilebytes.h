#ifndef TESTS_DATAFILEBYTES_H
#define TESTS_DATAFILEBYTES_H

#include <QDataStream>
#include <QFile>
#include <QRegularExpression>
#include <QString>
#include <QTest>

/// The fields as little-endian numbers, a float in four bytes.
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

/// Replaces a file's contents in place: whoever has it open sees the new ones.
inline void writeFile(const QString& a_sPath, const QByteArray& a_bytes)
{
    QFile file(a_sPath);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(a_bytes), a_bytes.size());
}

/// Fails the running test at every trace that is not expected.
inline void failOnTraces()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
}

/// Expects one trace more.
inline void expectTrace(const QString& a_sPattern)
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(a_sPattern));
}

/// A file of a class, open and good, that is opened again with other contents
/// is refused and holds nothing any more. The reason tells why.
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

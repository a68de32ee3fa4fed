#include "filesizelimit.h"
#include "kpbase/replacedfile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

QByteArray contentOf(const QString& a_sFile)
{
    QFile file(a_sFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestReplacedFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fullDisk_data();
    void fullDisk();
    void refusals_data();
    void refusals();
    void piecesInOrder();
};

void TestReplacedFile::fullDisk_data()
{
    QTest::addColumn<int>("room"); // bytes
    QTest::addColumn<int>("piece");
    QTest::addColumn<int>("pieces");

    QTest::newRow("small document") << 1'000 << 3'000 << 1;
    QTest::newRow("large document") << 65'536 << 1'000'000 << 1;
    QTest::newRow("rows") << 100'000 << 70 << 3'000;
    QTest::newRow("blocks") << 100'000 << 65'536 << 2;
    QTest::newRow("no room at all") << 0 << 10 << 1;
}

/// The error text is that of the system. The former file stays unchanged, and no other
/// file is left.
void TestReplacedFile::fullDisk()
{
    QFETCH(int, room);
    QFETCH(int, piece);
    QFETCH(int, pieces);
    const QTemporaryDir folder;
    const QString sFile = folder.filePath(QStringLiteral("file"));
    QFile plain(folder.filePath(QStringLiteral("plain")));
    QVERIFY(plain.open(QIODevice::WriteOnly));
    {
        ReplacedFile former(sFile);
        QVERIFY(former.open() && former.write("former") && former.commit());
        const FileSizeLimit limit(static_cast<rlim_t>(room));
        ReplacedFile file(sFile);
        QVERIFY(file.open());
        bool bWritten = true;
        bool bThrough = true;
        for (int i = 0; i < pieces; ++i) {
            bWritten = file.write(QByteArray(piece, 'x')) && bWritten;
            bThrough = bThrough && writeThrough(plain, QByteArray(piece, 'x'));
        }
        QVERIFY(!file.commit());
        QCOMPARE(file.errorString(), QStringLiteral("File too large"));
        QVERIFY(!file.write("more") && !file.commit());
        QVERIFY(!bThrough);
        QCOMPARE(plain.errorString(), QStringLiteral("File too large"));
        plain.close();
    }
    QCOMPARE(contentOf(sFile), QByteArray("former"));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 2);
}

void TestReplacedFile::refusals_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");

    QTest::newRow("folder") << "/"
                            << "is a folder";
    QTest::newRow("device") << "/dev/full"
                            << "is not a regular file";
    QTest::newRow("no such folder") << "/dev/null/none/file"
                                    << "Not a directory";
    QTest::newRow("no folder to write to") << "/proc/file"
                                           << "No such file or directory";
}

void TestReplacedFile::refusals()
{
    QFETCH(QString, name);
    ReplacedFile file(name);
    QVERIFY(!file.open());
    QTEST(file.errorString(), "reason");
    QVERIFY(!file.write("x") && !file.commit());
}

/// Small pieces are buffered, large pieces are not. The file contains all pieces in the
/// order in which they were written.
void TestReplacedFile::piecesInOrder()
{
    const QTemporaryDir folder;
    const QString sFile = folder.filePath(QStringLiteral("file"));
    QByteArray expected;
    ReplacedFile file(sFile);
    QVERIFY(file.open());
    for (const int iSize : {1, 65'535, 1, 0, 70'000, 3, 200'000, 65'536}) {
        const QByteArray piece(iSize, static_cast<char>('a' + expected.size() % 26));
        QVERIFY(file.write(piece));
        expected += piece;
    }
    QVERIFY(!QFile::exists(sFile));
    QVERIFY(file.commit());
    QVERIFY(contentOf(sFile) == expected);
}

QTEST_GUILESS_MAIN(TestReplacedFile)

#include "tst_replacedfile.moc"

#include "kpzip/archive.h"

#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <QTest>

#include <sys/stat.h>
#include <zip.h>

namespace {

constexpr zip_uint32_t s_uiFileMode = 0100644;

/// Byte offsets in the end record of a zip file, and in an entry of its directory.
constexpr qsizetype s_iEndEntries = 10;
constexpr qsizetype s_iEntryMethod = 10;
constexpr qsizetype s_iEntrySize = 24;

struct TestEntry
{
    QString name;
    QByteArray bytes;
    zip_uint32_t mode = s_uiFileMode;
    bool encrypted = false;
};

QStringList s_traced;

void collectTrace(QtMsgType a_eType, const QMessageLogContext& a_context, const QString& a_sMessage)
{
    if (a_eType == QtWarningMsg && qstrcmp(a_context.category, "simulation.trace") == 0) {
        s_traced.append(a_sMessage);
    }
}

QByteArray contentOf(const QString& a_sFile)
{
    QFile file(a_sFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

void write(const QString& a_sFile, const QByteArray& a_bytes)
{
    QFile file(a_sFile);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(a_bytes), a_bytes.size());
}

void makeZip(const QString& a_sFile, const QList<TestEntry>& a_entries)
{
    zip_t* pZip = zip_open(QFile::encodeName(a_sFile).constData(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    QVERIFY(pZip);
    for (const TestEntry& entry : a_entries) {
        zip_source_t* pSource = zip_source_buffer(pZip, entry.bytes.constData(),
                                                  static_cast<zip_uint64_t>(entry.bytes.size()), 0);
        const zip_int64_t iIndex =
            zip_file_add(pZip, entry.name.toUtf8().constData(), pSource, ZIP_FL_ENC_UTF_8);
        QVERIFY(iIndex >= 0);
        const auto uiIndex = static_cast<zip_uint64_t>(iIndex);
        zip_file_set_external_attributes(pZip, uiIndex, 0, ZIP_OPSYS_UNIX, entry.mode << 16U);
        if (entry.encrypted) {
            QCOMPARE(zip_file_set_encryption(pZip, uiIndex, ZIP_EM_AES_256, "secret"), 0);
        }
    }
    zip_set_archive_comment(pZip, "a comment", 9);
    QCOMPARE(zip_close(pZip), 0);
}

QByteArray patched(QByteArray a_bytes, qsizetype a_iOffset, const QByteArray& a_patch)
{
    return a_bytes.replace(a_iOffset, a_patch.size(), a_patch);
}

/// Returns the sorted relative paths of all entries below a folder, except folders.
QStringList filesBelow(const QString& a_sFolder)
{
    QStringList files;
    QDirIterator each(a_sFolder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (each.hasNext()) {
        files.append(QDir(a_sFolder).relativeFilePath(each.next()));
    }
    files.sort();
    return files;
}

} // namespace

class TestArchive : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void unpackFolder_data();
    void unpackFolder();
    void unpackFile();
    void refusedEntries();
    void damagedEntry_data();
    void damagedEntry();
    void everyTruncation();
    void everyByteDamaged();
    void boundedBytes();
    void refusedArchive_data();
    void refusedArchive();
    void inTheWay();

private:
    [[nodiscard]] QString zip() const { return m_pFolder->filePath(QStringLiteral("a.zip")); }
    [[nodiscard]] QString target() const { return m_pFolder->filePath(QStringLiteral("in/target")); }
    [[nodiscard]] QString path(const char* a_szFile) const
    {
        return target() + QLatin1Char('/') + QLatin1String(a_szFile);
    }

    std::unique_ptr<QTemporaryDir> m_pFolder;
    const QByteArray m_text = QByteArray("some text. ").repeated(40);
    const QList<TestEntry> m_entries{{QStringLiteral("Top/z"), QByteArray("zz")},
                                     {QStringLiteral("Top/.lock"), QByteArray()},
                                     {QStringLiteral("Top/a b/c"), m_text},
                                     {QStringLiteral("Top2/d"), QByteArray("dd")},
                                     {QString::fromUtf8("Top/\xC3\xA4"), QByteArray("e")}};
};

void TestArchive::init()
{
    m_pFolder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir().mkpath(target()));
    s_traced.clear();
    qInstallMessageHandler(collectTrace);
}

void TestArchive::cleanup()
{
    qInstallMessageHandler(nullptr);
}

void TestArchive::unpackFolder_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QStringList>("expected");
    const QStringList below{QStringLiteral("a b/c"), QStringLiteral(".lock"), QStringLiteral("z"),
                            QString::fromUtf8("\xC3\xA4")};
    const QStringList all{QStringLiteral("Top/a b/c"), QStringLiteral("Top/.lock"), QStringLiteral("Top/z"),
                          QString::fromUtf8("Top/\xC3\xA4"), QStringLiteral("Top2/d")};
    QTest::newRow("with its slash") << "/Top" << below;
    QTest::newRow("folder in a folder") << "/Top/a b" << QStringList{QStringLiteral("c")};
    QTest::newRow("everything") << "/" << all;
    QTest::newRow("no such folder") << "/To" << QStringList();
    QTest::newRow("a file") << "/Top/z" << QStringList();
}

void TestArchive::unpackFolder()
{
    QFETCH(QString, folder);
    QFETCH(QStringList, expected);
    makeZip(zip(), m_entries);
    KPZip::Archive archive(zip());
    QVERIFY(archive.open(KPZip::Archive::ModeRead));
    const QString sMissing = path("made/here");
    QCOMPARE(archive.extractToFolder(folder, sMissing), !expected.isEmpty());
    expected.sort();
    QCOMPARE(filesBelow(sMissing), expected);
    QCOMPARE(s_traced.size(), expected.isEmpty() ? 1 : 0);
}

void TestArchive::unpackFile()
{
    makeZip(zip(), m_entries);
    KPZip::Archive archive(zip());
    const QString sEntry = m_entries[2].name;
    QVERIFY(!archive.extractToFile(sEntry, path("x")));
    QVERIFY(archive.open(KPZip::Archive::ModeRead));
    QCOMPARE(archive.files().size(), m_entries.size());
    QCOMPARE(archive.files()[2], sEntry);
    QCOMPARE(archive.declaredSize(sEntry), static_cast<std::uint64_t>(m_text.size()));

    write(path("x"), "what stood there, and is longer");
    QVERIFY(!archive.extractToFile(QStringLiteral("Top"), path("x")));
    QCOMPARE(contentOf(path("x")), QByteArray("what stood there, and is longer"));
    QVERIFY(archive.extractToFile(sEntry, path("x")));
    QCOMPARE(contentOf(path("x")), m_text);
    QVERIFY(archive.extractToFile(m_entries[1].name, path("x")));
    QCOMPARE(contentOf(path("x")), QByteArray());
    archive.close();
    QVERIFY(!archive.isOpen() && archive.files().isEmpty());
    QCOMPARE(filesBelow(target()), QStringList{QStringLiteral("x")});
}

void TestArchive::refusedEntries()
{
    QList<TestEntry> entries{{QStringLiteral("good"), QByteArray("good")},
                             {QStringLiteral("link"), QByteArray("good"), 0120777},
                             {QStringLiteral("device"), QByteArray(), 0020644},
                             {QStringLiteral("pipe"), QByteArray(), 0010644},
                             {QStringLiteral("encrypted"), QByteArray("evil"), s_uiFileMode, true}};
    // The zip library writes neither a NUL in a name nor the same name twice. Two names
    // therefore contain a hash sign, which the test replaces in the finished archive.
    for (const char* szName : {"../evil", "a/../../evil", "a/..", "../evil/", "/tmp/evil", "C:evil",
                               "..\\evil", "ev#il", "ev\nil", "./good", "a//evil", "goo#"}) {
        entries.append({QLatin1String(szName), QByteArray("evil")});
    }
    makeZip(zip(), entries);
    write(zip(), contentOf(zip()).replace("ev#il", QByteArray("ev\0il", 5)).replace("goo#", "good"));

    KPZip::Archive archive(zip());
    QVERIFY(archive.open(KPZip::Archive::ModeRead));
    QCOMPARE(archive.files(), QStringList{QStringLiteral("good")});
    QCOMPARE(archive.refusedCount(), static_cast<std::uint64_t>(entries.size() - 1));
    // Ten refused entries are traced by name. The eleventh line gives only the
    // number of all refused entries.
    QCOMPARE(s_traced.size(), 11);
    QVERIFY(archive.extractToFolder(QString(), target()));
    QCOMPARE(filesBelow(m_pFolder->path()),
             (QStringList{QStringLiteral("a.zip"), QStringLiteral("in/target/good")}));
}

void TestArchive::damagedEntry_data()
{
    QTest::addColumn<QByteArray>("record");
    QTest::addColumn<qsizetype>("offset");
    QTest::addColumn<QByteArray>("patch");
    QTest::addColumn<bool>("listed");
    const QByteArray entry("PK\x01\x02");

    QTest::newRow("bytes changed") << QByteArray("stored") << qsizetype{0} << QByteArray("S") << true;
    QTest::newRow("larger than declared") << entry << s_iEntrySize << QByteArray("\1\0\0\0", 4) << true;
    QTest::newRow("smaller than declared") << entry << s_iEntrySize << QByteArray(3, '\x7F') << true;
    QTest::newRow("unknown method") << entry << s_iEntryMethod << QByteArray("\x55") << false;
    QTest::newRow("decoder of unbounded memory") << entry << s_iEntryMethod << QByteArray("\x5F") << false;
}

void TestArchive::damagedEntry()
{
    QFETCH(QByteArray, record);
    QFETCH(qsizetype, offset);
    QFETCH(QByteArray, patch);
    QFETCH(bool, listed);
    makeZip(zip(), {{QStringLiteral("x"), QByteArray("stored")}, {QStringLiteral("y"), m_text}});
    const QByteArray bytes = contentOf(zip());
    write(zip(), patched(bytes, bytes.indexOf(record) + offset, patch));
    write(path("x"), "before");

    KPZip::Archive archive(zip());
    QVERIFY(archive.open(KPZip::Archive::ModeRead));
    QCOMPARE(archive.files().contains(QStringLiteral("x")), listed);
    QCOMPARE(archive.extractToFolder(QString(), target()), !listed);
    QCOMPARE(s_traced.size(), 1);
    QCOMPARE(contentOf(path("x")), QByteArray("before"));
    QCOMPARE(contentOf(path("y")), m_text);
    QCOMPARE(filesBelow(target()).size(), 2);
}

void TestArchive::everyTruncation()
{
    makeZip(zip(), m_entries);
    const QByteArray bytes = contentOf(zip());
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        write(zip(), bytes.left(i));
        s_traced.clear();
        KPZip::Archive archive(zip());
        QVERIFY2(!archive.open(KPZip::Archive::ModeRead), qPrintable(QString::number(i)));
        QVERIFY(!archive.errorString().isEmpty());
        QCOMPARE(s_traced.size(), 1);
    }
}

/// Every unpacked file is complete, whichever byte of the archive is damaged.
void TestArchive::everyByteDamaged()
{
    const QList<TestEntry> entries{m_entries[0], m_entries[2]};
    makeZip(zip(), entries);
    const QByteArray bytes = contentOf(zip());
    const QString sTarget = m_pFolder->filePath(QStringLiteral("damaged"));
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        write(zip(), patched(bytes, i, QByteArray(1, static_cast<char>(~bytes[i]))));
        KPZip::Archive archive(zip());
        if (archive.open(KPZip::Archive::ModeRead)) {
            archive.extractToFolder(QString(), sTarget);
        }
        for (const QString& sFile : filesBelow(sTarget)) {
            const QByteArray content = contentOf(sTarget + QLatin1Char('/') + sFile);
            QVERIFY2(content == entries[0].bytes || content == entries[1].bytes,
                     qPrintable(QString::number(i)));
        }
        QVERIFY(QDir(sTarget).removeRecursively());
    }
}

void TestArchive::boundedBytes()
{
    const QByteArray million(1'000'000, 'x');
    makeZip(zip(),
            {{QStringLiteral("1"), million}, {QStringLiteral("2"), million}, {QStringLiteral("3"), million}});
    KPZip::Archive archive(zip());
    archive.setBounds(2'500'000, 3);
    QVERIFY(archive.open(KPZip::Archive::ModeRead));
    QVERIFY(!archive.extractToFolder(QString(), target()));
    QCOMPARE(filesBelow(target()), (QStringList{QStringLiteral("1"), QStringLiteral("2")}));
    // The limit of 2500000 bytes applies to all extractions together until the archive
    // is closed.
    QVERIFY(!archive.extractToFile(QStringLiteral("1"), path("again")));
    QVERIFY(!QFile::exists(path("again")));
    QVERIFY(archive.open(KPZip::Archive::ModeRead));
    QVERIFY(archive.extractToFile(QStringLiteral("1"), path("again")));
}

void TestArchive::refusedArchive_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");

    QTemporaryDir folder;
    const QString sFile = folder.filePath(QStringLiteral("a.zip"));
    makeZip(sFile, m_entries);
    const QByteArray good = contentOf(sFile);
    const qsizetype iEnd = good.lastIndexOf("PK\x05\x06");
    const QByteArray end = good.mid(iEnd, 20) + QByteArray(2, '\0');
    const QByteArray empty = QByteArray("PK\x05\x06") + QByteArray(18, '\0');
    QTest::newRow("nothing") << QByteArray() << "no zip directory";
    QTest::newRow("no archive") << QByteArray(100'000, 'P') << "no zip directory";
    QTest::newRow("too many entries") << good << "declares 5 entries";
    QTest::newRow("claims fewer than it has")
        << patched(good, iEnd + s_iEndEntries - 2, QByteArray("\x01\0\x01\0", 4)) << "more than 4 entries";
    QTest::newRow("two directories") << good.left(iEnd) + end + end << "two directories";
    QTest::newRow("second directory empty") << good.left(iEnd) + end + empty << "two directories";
    QByteArray wideEnd = QByteArray::fromHex("504B06062C") + QByteArray(51, '\0');
    wideEnd.replace(37, 1, "\1")
        .replace(40, 4, good.mid(iEnd + 12, 4))
        .replace(48, 4, good.mid(iEnd + 16, 4));
    QByteArray locator = QByteArray::fromHex("504B0607") + QByteArray(16, '\0');
    qToLittleEndian(static_cast<quint64>(iEnd), locator.data() + 8);
    QTest::newRow("wide directory of a trillion entries")
        << good.left(iEnd) + wideEnd + locator + end << "declares 1099511627776 entries";
}

void TestArchive::refusedArchive()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    write(zip(), bytes);
    KPZip::Archive archive(zip());
    archive.setBounds(1'000'000, 4);
    QVERIFY(!archive.open(KPZip::Archive::ModeRead));
    QVERIFY(!archive.isOpen());
    QVERIFY2(archive.errorString().contains(reason), qPrintable(archive.errorString()));
    QCOMPARE(s_traced.size(), 1);
}

/// An existing folder, link or pipe at the path of a target file is neither followed
/// nor waited for. The other files are still unpacked.
void TestArchive::inTheWay()
{
    const QString sOutside = m_pFolder->filePath(QStringLiteral("outside"));
    QVERIFY(QDir().mkpath(sOutside) && QDir().mkpath(path("folder")));
    write(sOutside + QStringLiteral("/file"), "mine");
    QVERIFY(QFile::link(sOutside + QStringLiteral("/file"), path("link")));
    QVERIFY(QFile::link(sOutside + QStringLiteral("/missing"), path("broken")));
    QVERIFY(QFile::link(sOutside, path("linked")));
    QCOMPARE(mkfifo(QFile::encodeName(path("pipe")).constData(), S_IRUSR | S_IWUSR), 0);
    QList<TestEntry> entries;
    for (const char* szName : {"folder", "link", "broken", "linked/file", "linked/a/b", "pipe", "free"}) {
        entries.append({QLatin1String(szName), QByteArray("theirs")});
    }
    makeZip(zip(), entries);

    KPZip::Archive archive(zip());
    QVERIFY(archive.open(KPZip::Archive::ModeRead));
    QVERIFY(!archive.extractToFolder(QString(), target()));
    QCOMPARE(s_traced.size(), entries.size() - 1);
    QCOMPARE(filesBelow(sOutside), QStringList{QStringLiteral("file")});
    QCOMPARE(contentOf(sOutside + QStringLiteral("/file")), QByteArray("mine"));
    QCOMPARE(contentOf(path("free")), QByteArray("theirs"));

    for (const char* szArchive : {"folder", "pipe", "missing"}) {
        KPZip::Archive none(path(szArchive));
        QVERIFY(!none.open(KPZip::Archive::ModeRead));
    }
}

QTEST_GUILESS_MAIN(TestArchive)

#include "tst_archive.moc"

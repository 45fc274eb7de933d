#include "platform/PrivateProfile.h"

#include "TestFiles.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QStringEncoder>
#include <QTemporaryDir>

#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

pid_t StartChild(const std::function<int()>& run)
{
    const pid_t pid = fork();
    if (pid == 0)
        _exit(run());
    return pid;
}

int WaitChild(pid_t pid)
{
    int status = -1;
    return waitpid(pid, &status, 0) == pid && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class PrivateProfile : public ::testing::Test
{
protected:
    QString Path() const { return m_dir.filePath(QStringLiteral("Setting.ini")); }
    void Put(const QByteArray& bytes) const { ASSERT_TRUE(WriteAll(Path(), bytes)); }
    QByteArray Bytes() const { return ReadAll(Path()); }
    QString Get(const QString& s, const QString& k, const QString& d = "dflt") const
    {
        return GetPrivateProfileString(s, k, d, Path());
    }
    int GetInt(const QString& s, const QString& k) const
    {
        return int(GetPrivateProfileInt(s, k, 77, Path()));
    }
    bool Write(const QString& s, const QString& k, const QString& v) const
    {
        return WritePrivateProfileString(s, k, v, Path());
    }

    QTemporaryDir m_dir;
};

// As the Windows calls leave a file that a user has edited.
TEST_F(PrivateProfile, ReadsAFileAsWindowsWritesIt)
{
    Put("; written by hand\r\n[ Measure ]\r\nm_unit.m_dcxPerPixel = 0.01\r\nPreciSion= 3  \r\n"
        "#note=hash starts a key\r\n;Precision=9\r\nno equals sign\r\nexpr=a=b;c\r\nquoted=\" padded \"\r\n"
        "single='x'\r\nodd=\"x'\r\nempty=\r\n\r\n[Measure]\r\nFontSize=2\r\n"
        "[Video]\r\nDevice=KMZ-N130 USB2.0 Camera\r\ndevice=second\r\n");
    const char* const cases[][3] = { { "measure", "M_UNIT.M_DCXPERPIXEL", "0.01" },
        { "Measure", "Precision", "3" }, { "Measure", "#note", "hash starts a key" },
        { "Measure", ";Precision", "dflt" }, { "Measure", "no equals sign", "dflt" },
        { "Measure", "expr", "a=b;c" }, { "Measure", "quoted", " padded " }, { "Measure", "single", "x" },
        { "Measure", "odd", "\"x'" }, { "Measure", "empty", "" },
        { "Measure", "FontSize", "dflt" }, // only the first of two equal sections counts
        { "Video", "DEVICE", "KMZ-N130 USB2.0 Camera" } };
    for (const auto& [section, key, value] : cases)
        EXPECT_EQ(Get(section, key), value) << section << "/" << key;
    EXPECT_EQ(GetInt("Measure", "empty"), 77);
    EXPECT_EQ(Get("Absent", "x", "trailing  \t"), "trailing");
    const QString nullDefault = GetPrivateProfileString("Absent", "x", QString(), Path());
    EXPECT_TRUE(nullDefault.isEmpty() && !nullDefault.isNull());
    EXPECT_EQ(
        GetPrivateProfileString("Video", QString(), "", Path()), QString::fromLatin1("Device\0device\0", 14));

    // Every read goes to the file as it now is.
    Put("[a]b]\ra=1\n[ s ]\r\n\r\nb=2\n\rc=3");
    EXPECT_EQ(Get("a]b", "a"), "1");
    EXPECT_EQ(Get("S", "b"), "2");
    EXPECT_EQ(Get("s", "c"), "3");
    QFile::remove(Path());
    EXPECT_EQ(Get("s", "c"), "dflt");
}

TEST_F(PrivateProfile, IntegersFollowThePlatform)
{
    Put("[i]\na=42A9\nb=B42\nc=  -1\nd=+7\ne=4294967297\nf=-\ng=\"12\"\nh=0x10\n");
    const std::pair<const char*, int> cases[] = { { "a", 42 }, { "b", 0 }, { "c", -1 }, { "d", 7 },
        { "e", 1 }, { "f", 0 }, { "g", 12 }, { "h", 0 }, { "z", 77 } };
    for (const auto& [key, expected] : cases)
        EXPECT_EQ(GetInt("i", key), expected) << key;
}

TEST_F(PrivateProfile, EncodingsAreReadAndKept)
{
    Put("[s]\nlatin=Gr\xFC\xDF\nutf8=Gr\xC3\xBC\xC3\x9F\n");
    EXPECT_EQ(Get("s", "latin"), u"Grüß");
    EXPECT_EQ(Get("s", "utf8"), u"Grüß");

    for (const auto encoding : { QStringConverter::Utf16LE, QStringConverter::Utf16BE }) {
        const QByteArray file
            = QStringEncoder(encoding, QStringConverter::Flag::WriteBom)(u"[Größe]\r\nk = v\r\n");
        Put(file);
        EXPECT_EQ(Get("größe", "K"), "v");
        ASSERT_TRUE(Write(QStringLiteral("GRÖßE"), "n", QStringLiteral("ü")));
        EXPECT_EQ(Bytes(), file + QByteArray(QStringEncoder(encoding)(u"n=ü\r\n")));
    }

    Put("\xEF\xBB\xBF[s]\r\nk=1\r\n");
    ASSERT_TRUE(Write("s", "k", QStringLiteral("é")));
    EXPECT_EQ(Bytes(), "\xEF\xBB\xBF[s]\r\nk=\xC3\xA9\r\n");
}

TEST_F(PrivateProfile, WritesLikeTheWindowsCalls)
{
    ASSERT_TRUE(Write("App", "key", "string"));
    EXPECT_EQ(Bytes(), "[App]\r\nkey=string\r\n");

    // Odd bytes before the first section, LF ends and a Latin-1 comment stay as they were.
    Put("junk \x80\x81\n[A]\n  Key = 1\n; caf\xE9\n\n[B]\nx=1");
    ASSERT_TRUE(Write("a", "KEY", "2"));
    ASSERT_TRUE(Write("A", "new", "n"));
    ASSERT_TRUE(Write("B", "y", "2"));
    ASSERT_TRUE(Write("C", "z", "3"));
    EXPECT_EQ(Bytes(), "junk \x80\x81\n[A]\nKey=2\nnew=n\r\n; caf\xE9\n\n[B]\nx=1\r\ny=2\r\n[C]\r\nz=3\r\n");

    Put("[A]\na=1\na=2\nb=1\n[B]\nc=1\n[A]\nd=1\n");
    ASSERT_TRUE(Write("A", "a", "9"));
    ASSERT_TRUE(Write("A", "d", "9"));
    ASSERT_TRUE(Write("A", "b", QString()));
    EXPECT_EQ(Bytes(), "[A]\na=9\na=2\nd=9\r\n[B]\nc=1\n[A]\nd=1\n");
    ASSERT_TRUE(Write("A", QString(), QString()));
    EXPECT_EQ(Bytes(), "[B]\nc=1\n[A]\nd=1\n");

    // Nothing that would read back as something else is written.
    EXPECT_FALSE(Write("B", "c", "1\r\n[X]"));
    EXPECT_FALSE(Write("B", "a=b", "1"));
    EXPECT_FALSE(Write("B", ";c", "1"));
    EXPECT_EQ(Bytes(), "[B]\nc=1\n[A]\nd=1\n");
}

TEST_F(PrivateProfile, UnchangedFilesAreNotTouched)
{
    Put("[A]\r\nk = v\r\n");
    ASSERT_EQ(chmod(Path().toLocal8Bit(), 0640), 0);
    const QDateTime old(QDate(2001, 2, 3), QTime(4, 5, 6), Qt::UTC);
    {
        QFile f(Path());
        ASSERT_TRUE(f.open(QIODevice::ReadWrite) && f.setFileTime(old, QFileDevice::FileModificationTime));
    }
    EXPECT_TRUE(Write("a", "K", "v"));
    EXPECT_TRUE(Write("A", "missing", QString()));
    EXPECT_TRUE(Write("Missing", QString(), QString()));
    EXPECT_EQ(QFileInfo(Path()).lastModified(), old);

    ASSERT_TRUE(Write("A", "k", "w"));
    EXPECT_EQ(Bytes(), "[A]\r\nk=w\r\n");
    EXPECT_EQ(QFile::permissions(Path()) & 0x0777, QFile::ReadUser | QFile::WriteUser | QFile::ReadGroup);
    EXPECT_EQ(QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList { "Setting.ini" });

    // Removing from a missing file neither fails nor creates it; a missing folder is never created.
    EXPECT_TRUE(WritePrivateProfileString("A", "k", QString(), Path() + "2"));
    EXPECT_FALSE(QFile::exists(Path() + "2"));
    EXPECT_FALSE(WritePrivateProfileString("A", "k", "v", m_dir.filePath("sub/Setting.ini")));
    EXPECT_FALSE(QFile::exists(m_dir.filePath("sub")));
}

// A full disk is played by a file-size limit in a child process.
TEST_F(PrivateProfile, FailedWriteLeavesTheOldFileWhole)
{
    const QByteArray original = "[A]\r\nk=1\r\n; keep me\r\n";
    Put(original);
    const pid_t child = StartChild([&] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit { 1024, 1024 };
        setrlimit(RLIMIT_FSIZE, &limit);
        return Write("A", "k", QString(4096, u'x')) ? 1 : 0;
    });
    EXPECT_EQ(WaitChild(child), 0) << "the write should have reported failure";
    EXPECT_EQ(Bytes(), original);
    EXPECT_EQ(QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList { "Setting.ini" });
}

TEST_F(PrivateProfile, TwoProcessesKeepEachOthersWrites)
{
    auto writeKeys = [&](int writer) {
        int failures = 0;
        for (int i = 0; i < 40; ++i)
            failures
                += Write("Shared", QStringLiteral("p%1_%2").arg(writer).arg(i), QString::number(i)) ? 0 : 1;
        return failures;
    };
    const pid_t child = StartChild([&] { return writeKeys(1); });
    EXPECT_EQ(writeKeys(0), 0);
    EXPECT_EQ(WaitChild(child), 0);
    for (int writer = 0; writer < 2; ++writer) {
        for (int i = 0; i < 40; ++i)
            EXPECT_EQ(GetInt("Shared", QStringLiteral("p%1_%2").arg(writer).arg(i)), i);
    }
}

} // namespace

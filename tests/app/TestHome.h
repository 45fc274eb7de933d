#pragma once

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// A data, a configuration and a runtime folder of the test's own for as long
// as it lives, so the program never reads or writes the user's settings and
// its single-instance socket meets no other test's.
class TestHome
{
public:
    TestHome()
    {
        EXPECT_TRUE(dir.isValid());
        qputenv("OCULIX_DATA_DIR", QFile::encodeName(dir.filePath("data")));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(dir.filePath("config")));
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(dir.path()));
    }
    ~TestHome()
    {
        Restore("OCULIX_DATA_DIR", savedData);
        Restore("XDG_CONFIG_HOME", savedConfig);
        Restore("XDG_RUNTIME_DIR", savedRuntime);
    }
    TestHome(const TestHome&) = delete;
    TestHome& operator=(const TestHome&) = delete;

    QString filePath(const QString& name) const { return dir.filePath(name); }
    QString path() const { return dir.path(); }

private:
    static void Restore(const char* name, const QByteArray& value)
    {
        value.isNull() ? qunsetenv(name) : qputenv(name, value);
    }

    const QByteArray savedData = qgetenv("OCULIX_DATA_DIR");
    const QByteArray savedConfig = qgetenv("XDG_CONFIG_HOME");
    const QByteArray savedRuntime = qgetenv("XDG_RUNTIME_DIR");
    QTemporaryDir dir;
};

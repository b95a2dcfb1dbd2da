#include "HostName.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

TEST(HostName, PrettyNameFromMachineInfo)
{
    struct Case {
        const char* what;
        QByteArray text;
        QString expected;
    };
    const QList<Case> cases = {
        {"double quoted", "PRETTY_HOSTNAME=\"Laptop di Anna\"\n", "Laptop di Anna"},
        {"single quoted keeps backslashes", "PRETTY_HOSTNAME='a\\b'\n", "a\\b"},
        {"unquoted", "PRETTY_HOSTNAME=Studio\n", "Studio"},
        {"escapes in double quotes", "PRETTY_HOSTNAME=\"Il \\\"Mac\\\" di Bo\"", "Il \"Mac\" di Bo"},
        {"among other keys, spaces around", "CHASSIS=laptop\n  PRETTY_HOSTNAME = \"Ufficio\"  \nLOCATION=Roma\n",
         "Ufficio"},
        {"last assignment wins", "PRETTY_HOSTNAME=Uno\nPRETTY_HOSTNAME=Due\n", "Due"},
        {"commented out", "#PRETTY_HOSTNAME=Vecchio\n", ""},
        {"a longer key is another key", "PRETTY_HOSTNAME_OLD=Vecchio\n", ""},
        {"empty value", "PRETTY_HOSTNAME=\"\"\n", ""},
        {"no such key", "CHASSIS=desktop\n", ""},
        {"UTF-8 name", "PRETTY_HOSTNAME=\"Caff\xc3\xa8\"\n", QString::fromUtf8("Caff\xc3\xa8")},
        {"empty file", "", ""},
        {"binary junk", QByteArray("\x00\xff=\x01", 4), ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(hostname::prettyFromMachineInfo(c.text), c.expected);
    }
}

TEST(HostName, MachineInfoFileNamesTheMachine)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("machine-info");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("PRETTY_HOSTNAME=\"Scrivania di Luca\"\n");
    file.close();
    EXPECT_EQ(hostname::prettyHostName(path), "Scrivania di Luca");
    EXPECT_EQ(hostname::localizedName(path), "Scrivania di Luca");
}

TEST(HostName, WithoutMachineInfoSomeNameStillComes)
{
    // Here hostnamectl may or may not know a pretty name; the plain host name backs it either way.
    const QString name = hostname::localizedName("/nonexistent/machine-info");
    EXPECT_FALSE(name.isEmpty());
    EXPECT_EQ(name, name.trimmed());
}

#include "HostName.h"

#include <QList>
#include <gtest/gtest.h>

TEST(HostName, PrettyNameFromMachineInfoElseTheHostName)
{
    const QList<std::pair<QByteArray, QString>> cases = {
        {"CHASSIS=laptop\n  PRETTY_HOSTNAME = \"Il \\\"Mac\\\" di Bo\"  \n", "Il \"Mac\" di Bo"},
        {"PRETTY_HOSTNAME='a\\b'\nPRETTY_HOSTNAME_OLD=x\n", "a\\b"},
        {"PRETTY_HOSTNAME=Uno\n#PRETTY_HOSTNAME=Tre\nPRETTY_HOSTNAME=Caff\xc3\xa8\n",
         QString::fromUtf8("Caff\xc3\xa8")},
        {QByteArray("\x00\xff=\x01", 4), ""},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(hostname::prettyFromMachineInfo(text), expected) << text.toStdString();
    // hostnamectl may or may not know a pretty name here; the plain host name backs it either way.
    const QString name = hostname::localizedName("/nonexistent/machine-info");
    EXPECT_TRUE(!name.isEmpty() && name == name.trimmed());
}

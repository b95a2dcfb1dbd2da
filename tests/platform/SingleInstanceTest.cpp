// Where the running copy's socket lives when the session gives no runtime folder.
#include "SingleInstance.h"

#include <QFileInfo>
#include <gtest/gtest.h>

TEST(SingleInstance, WithoutARuntimeFolderTheSocketGoesToAPrivateOne)
{
    const QByteArray saved = qgetenv("XDG_RUNTIME_DIR");
    for (const char* runtime : {"", "/nonexistent/runtime"}) {
        qputenv("XDG_RUNTIME_DIR", runtime);
        const QFileInfo dir(QFileInfo(SingleInstance::socketPathFor(":3.0")).path());
        EXPECT_TRUE(dir.isDir());
        EXPECT_EQ(int(dir.permissions() & 0x7777), int(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                                       QFile::ReadUser | QFile::WriteUser | QFile::ExeUser));
        EXPECT_EQ(SingleInstance::socketPathFor("unix:3"), SingleInstance::socketPathFor(":3.0"));
    }
    qputenv("XDG_RUNTIME_DIR", saved);
}

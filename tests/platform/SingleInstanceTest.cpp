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
        EXPECT_EQ(dir.permissions() & 0x0077, 0); // nobody else may connect, nor read the folder
        EXPECT_EQ(SingleInstance::socketPathFor("unix:3"), SingleInstance::socketPathFor(":3.0"));
    }
    qputenv("XDG_RUNTIME_DIR", saved);
}

#include "ui/FootageFolder.h"

#include "fakes/TemporaryFolder.h"

#include <QByteArray>
#include <gtest/gtest.h>
#include <map>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

/// A home of its own, whose folder for films is "Films" as far as the desktop knows.
class FootageFolderTest : public testing::Test {
protected:
    FootageFolderTest() {
        for (const auto* name : {"HOME", "XDG_CONFIG_HOME"})
            m_before[name] = qgetenv(name);
        m_home.write(".config/user-dirs.dirs", "XDG_VIDEOS_DIR=\"$HOME/Films\"\n");
        qputenv("HOME", QByteArray::fromStdString(m_home.path()));
        qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(m_home / ".config"));
    }
    ~FootageFolderTest() override {
        for (const auto& [name, value] : m_before) {
            if (value.isNull())
                qunsetenv(name.c_str());
            else
                qputenv(name.c_str(), value);
        }
    }

    [[nodiscard]] static QUrl url(const std::string& path) { return QUrl::fromLocalFile(QString::fromStdString(path)); }
    [[nodiscard]] QUrl inHome(const std::string& name) const { return url(m_home / name); }

    TemporaryFolder m_home;
    FootageFolder folder;

private:
    std::map<std::string, QByteArray> m_before;
};

} // namespace

TEST_F(FootageFolderTest, isTheDesktopsFolderForFilms) {
    m_home.write("Films/a.mov", "");
    EXPECT_EQ(folder.url(), inHome("Films"));
}

TEST_F(FootageFolderTest, isHomeWithoutAFolderForFilms) {
    EXPECT_EQ(folder.url(), url(m_home.path()));
    m_home.write("Films", "a file of that name");
    EXPECT_EQ(folder.url(), url(m_home.path()));
}

TEST_F(FootageFolderTest, isTheOneThatFilesWereChosenFromLast) {
    m_home.write("Films/a.mov", "");
    m_home.write("card/b.mov", "");
    m_home.write("disk 2/c #1.mov", "");
    folder.remember({inHome("card/b.mov"), inHome("disk 2/c #1.mov")});
    EXPECT_EQ(folder.url(), inHome("card"));
    folder.remember({inHome("disk 2/c #1.mov")});
    EXPECT_EQ(folder.url(), inHome("disk 2"));
}

TEST_F(FootageFolderTest, isTheFolderForFilmsAgainOnceTheLastOneHasGone) {
    m_home.write("Films/a.mov", "");
    folder.remember({inHome("card/b.mov")}); // the card was taken out
    EXPECT_EQ(folder.url(), inHome("Films"));
}

TEST_F(FootageFolderTest, noFilesAndFilesElsewhereAreNotRemembered) {
    m_home.write("card/b.mov", "");
    folder.remember({inHome("card/b.mov")});
    folder.remember({});
    folder.remember({QUrl(QStringLiteral("https://example.org/films/a.mov"))});
    EXPECT_EQ(folder.url(), inHome("card"));
}

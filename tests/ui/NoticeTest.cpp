// What the window tells at once, over whatever page is shown.

#include "ui/FlowFixture.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <filesystem>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class Notice : public FlowFixture {
protected:
    /// The dialog for the folder of a copy gives this one at once.
    void givenFolderDialogGives(const std::string& folder) {
        auto* notice = driver->window().findChild<QObject*>(QStringLiteral("notice"));
        ASSERT_NE(notice, nullptr);
        auto* component = new QQmlComponent(qmlEngine(notice), notice);
        const auto url = QUrl::fromLocalFile(QString::fromStdString(folder)).toString();
        component->setData(QStringLiteral("import QtQml\nQtObject { property url selectedFolder: \"%1\"\n"
                                          "signal accepted()\nsignal rejected()\nfunction open() { accepted(); } }")
                               .arg(url)
                               .toUtf8(),
                           QUrl());
        ASSERT_TRUE(component->isReady()) << component->errorString().toStdString();
        notice->setProperty("dialog", QVariant::fromValue(component));
    }
};

} // namespace

TEST_F(Notice, ofMissingMediaIsReadAndClosed) {
    launch();
    SavedProject project;
    project.timeline = "Received";
    project.mediaPaths = {"http://10.0.0.1/A.wav"};
    project.results = MiningResults();
    flow().loadProject(project);
    ASSERT_TRUE(driver->waitForText(QStringLiteral("Media are missing")));
    EXPECT_FALSE(driver->shows(QStringLiteral("proceedButton"))) << "there is nothing to save";
    driver->click(QStringLiteral("keepButton"));
    ASSERT_TRUE(driver->waitUntilGone(QStringLiteral("keepButton")));
    EXPECT_EQ(flow().noticeText(), QString());
}

TEST_F(Notice, ofAMineThatCouldNotBeSavedOffersACopy) {
    launch();
    world.disk().write("home/Library/Application Support", "in the way");
    drop({sample(1), sample(2)});
    flow().styleNext();
    ASSERT_TRUE(waitUntil([this] { return flow().canSaveCopy(); }, std::chrono::seconds(60)));
    ASSERT_TRUE(driver->waitForText(QStringLiteral("This mine could not be saved")));
    const auto folder = world.disk().makeFolder("a copy");
    givenFolderDialogGives(folder);
    driver->click(QStringLiteral("proceedButton"));
    ASSERT_TRUE(driver->waitForText(QStringLiteral("Copy saved")));
    for (const auto* name : {"story_brief.md", "subtitles.srt", "transcript.txt", "mining_results.json"})
        EXPECT_TRUE(std::filesystem::exists(folder + "/" + name)) << name;
    ASSERT_TRUE(driver->waitFor(QStringLiteral("keepButton")));
    driver->click(QStringLiteral("keepButton"));
    EXPECT_TRUE(driver->waitUntilGone(QStringLiteral("keepButton")));
}

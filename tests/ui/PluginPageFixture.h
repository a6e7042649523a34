#pragma once

#include "fakes/CoroutineTest.h"
#include "platform/ResourceFolder.h"
#include "ui/InstallViewModel.h"
#include "ui/UiWorld.h"
#include "ui/WindowDriver.h"

#include <QQuickView>
#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <stdexcept>

namespace zuvo::tests {

/// The plugin's page in a window of its own: no entry of the sidebar leads to it.
class PluginPageFixture : public testing::Test {
protected:
    PluginPageFixture() {
        world.administrator->runsWithin(world.disk(), world.platform.processes);
        world.disk().makeFolder("plugins");
        // A copy, since administrator's lines run only within the test's folder.
        const auto shipped = resourceFolder(ownBuildTree().folder + "/src").value_or("missing");
        std::filesystem::create_directories(world.disk() / "resources");
        std::filesystem::copy(shipped + "/plugin", world.disk() / "resources/plugin",
                              std::filesystem::copy_options::recursive);
    }

    void givenInstalled(const std::string& version = "0.1.0-beta") {
        world.disk().write("plugins/com.tarnwick.zuvo/version.json", R"({"version":")" + version + R"("})");
    }

    void show(QSize size = {880, 750}) {
        manager =
            std::make_shared<PluginManager>(world.administrator, world.disk() / "resources", world.pluginDirectory());
        model = std::make_unique<InstallViewModel>(manager);
        view = std::make_unique<QQuickView>();
        prepareEngine(*view->engine());
        view->setResizeMode(QQuickView::SizeRootObjectToView);
        view->setInitialProperties(
            {{QStringLiteral("model"), QVariant::fromValue(model.get())}, {QStringLiteral("focus"), true}});
        view->setTitle(QStringLiteral("Plugin"));
        view->setSource(QUrl(QStringLiteral("qrc:/qt/qml/Zuvo/InstallView.qml")));
        if (view->status() != QQuickView::Ready)
            throw std::runtime_error("The page could not be made");
        view->resize(size);
        driver = std::make_unique<WindowDriver>(*view);
    }

    void openAlert() {
        driver->click(QStringLiteral("uninstallButton"));
        ASSERT_TRUE(waitUntil([this] { return driver->focusedName() == QStringLiteral("keepButton"); }));
        // It grows while it comes: places to click at are those at its end.
        ASSERT_TRUE(waitUntil([this] {
            const auto* button = driver->find(QStringLiteral("keepButton"));
            return button != nullptr && button->mapToScene({1, 0}).x() - button->mapToScene({0, 0}).x() == 1.0;
        }));
    }
    [[nodiscard]] bool waitUntilAlertHasGone() { return driver->waitUntilGone(QStringLiteral("keepButton")); }

    UiWorld world;
    std::shared_ptr<PluginManager> manager;
    std::unique_ptr<InstallViewModel> model;
    std::unique_ptr<QQuickView> view;
    std::unique_ptr<WindowDriver> driver;
};

} // namespace zuvo::tests

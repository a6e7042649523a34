// The program that Resolve starts for the plugin, run by Qt's own JavaScript engine with a stand-in for Electron.

#include "base/Files.h"
#include "model/FileLimits.h"
#include "platform/ResourceFolder.h"

#include <QFileInfo>
#include <QJSEngine>
#include <gmock/gmock.h>

using namespace zuvo;

namespace {

/// Keeps what the program asks Electron for; each event's handler can be called by its name.
constexpr const char* electron = R"js(
var log = { windows: [], loaded: [], opened: [], handlers: {}, quits: 0, refused: 0 };
var openHandler = null;
var BrowserWindow = class {
    constructor(options) {
        log.windows.push(options);
        this.webContents = {
            on: (name, handler) => { log.handlers[name] = handler; },
            setWindowOpenHandler: (handler) => { openHandler = handler; },
        };
    }
    loadFile(file) { log.loaded.push(file); }
}
var app = {
    whenReady: () => ({ then: (ready) => { log.ready = ready; } }),
    on: (name, handler) => { log.handlers[name] = handler; },
    quit: () => { log.quits += 1; },
};
var shell = { openExternal: (address) => { log.opened.push(address); return { catch: () => {} }; } };
function require(name) {
    if (name === 'electron') return { app, BrowserWindow, shell };
    if (name === 'path') return { join: (...steps) => steps.join('/') };
    throw new Error('There is no module ' + name);
}
function navigate(address) {
    log.handlers['will-navigate']({ preventDefault: () => { log.refused += 1; } }, address);
}
)js";

class PluginProgram : public testing::Test {
protected:
    PluginProgram() {
        run(QString::fromUtf8(electron));
        run(QStringLiteral("var program = (function(__dirname) {") + QString::fromStdString(source()) +
            QStringLiteral("\n}); program('/plugins/zuvo');"));
    }

    static std::string folder() { return ownBuildTree().resources + "/plugin/"; }
    static std::string source() { return readTextFile(folder() + "main.js", FileLimits::megabyte).value_or("missing"); }

    QJSValue run(const QString& script) {
        auto value = engine.evaluate(script);
        EXPECT_FALSE(value.isError()) << value.toString().toStdString();
        return value;
    }
    std::string text(const char* expression) { return run(QString::fromUtf8(expression)).toString().toStdString(); }

    QJSEngine engine;
};

} // namespace

TEST_F(PluginProgram, opensTheShippedPageOnceElectronIsReady) {
    EXPECT_EQ(text("log.windows.length"), "0");
    run(QStringLiteral("log.ready()"));
    EXPECT_EQ(text("log.windows.length"), "1");
    EXPECT_EQ(text("log.loaded.join()"), "/plugins/zuvo/index.html");
    EXPECT_TRUE(QFileInfo::exists(QString::fromStdString(folder() + "index.html")));
}

TEST_F(PluginProgram, givesThePageNoRightsOfItsOwn) {
    run(QStringLiteral("log.ready()"));
    EXPECT_EQ(text("JSON.stringify(log.windows[0].webPreferences)"),
              R"({"nodeIntegration":false,"contextIsolation":true,"sandbox":true})");
}

TEST_F(PluginProgram, theButtonOpensTheApplicationByItsLink) {
    run(QStringLiteral("log.ready(); navigate('zuvo-manager://open')"));
    EXPECT_EQ(text("log.opened.join()"), "zuvo-manager://open");
    EXPECT_EQ(text("log.refused"), "1"); // the page stays
}

TEST_F(PluginProgram, noOtherAddressIsFollowed) {
    run(QStringLiteral("log.ready()"));
    for (const auto* address : {"https://example.test/", "zuvo-manager://callback?token=x", "zuvo-manager://open?x",
                                "file:///etc/passwd", "javascript:0"}) {
        run(QStringLiteral("navigate('%1')").arg(QLatin1String(address)));
        EXPECT_EQ(text(("openHandler({ url: '" + std::string(address) + "' }).action").c_str()), "deny");
    }
    EXPECT_EQ(text("log.opened.length"), "0");
    EXPECT_EQ(text("log.refused"), "5");
}

TEST_F(PluginProgram, endsWithItsWindow) {
    run(QStringLiteral("log.ready(); log.handlers['window-all-closed']()"));
    EXPECT_EQ(text("log.quits"), "1");
}

#pragma once

#include "fakes/pipeline/PipelineFixture.h"
#include "ui/MineViewModel.h"

#include <QUrl>
#include <memory>
#include <string>
#include <utility>

namespace zuvo::tests {

/// A flow over the pipeline of the fixture's world, with a Python that knows Resolve if the test says so.
class FlowModelFixture : public PipelineFixture {
protected:
    FlowModelFixture() {
        MineTools means;
        means.pipeline = pipeline;
        means.resolveBridge = ResolveBridge::create(platform, {disk.write("python3", "")});
        means.clock = platform.clock;
        flow = std::make_unique<MineViewModel>(std::move(means));
    }

    /// Resolve answers with a project and timelines to every script, "" for one that has none.
    void givenResolve(const std::string& project, const std::string& timelines) {
        tools->when(
            [](const ProcessRequest& request) {
                return request.program.ends_with("python3") &&
                       request.arguments.back().find("GetTimelineCount") == std::string::npos;
            },
            printed(project + "\n"));
        tools->when(
            [](const ProcessRequest& request) {
                return request.program.ends_with("python3") &&
                       request.arguments.back().find("GetTimelineCount") != std::string::npos;
            },
            printed(timelines));
    }

    [[nodiscard]] static QUrl url(const std::string& path) { return QUrl::fromLocalFile(QString::fromStdString(path)); }

    std::unique_ptr<MineViewModel> flow;
};

} // namespace zuvo::tests

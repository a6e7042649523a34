#pragma once

#include "ui/UiWorld.h"
#include "ui/WindowDriver.h"

#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zuvo::tests {

/// Tools that print what a test says of the request; without a word of it they were never installed.
class ToldTools final : public ProcessRunner {
    Q_OBJECT
public:
    using Matcher = std::function<bool(const ProcessRequest&)>;

    QCoro::Task<ProcessOutcome> run(ProcessRequest request) override;
    void endChildren() override {}

    /// The newest rule comes first.
    void print(Matcher matches, std::string output) { m_rules.emplace_back(std::move(matches), std::move(output)); }

    /// From now on nothing is answered until `release`.
    void hold() { m_isHeld = true; }
    void release();

    std::vector<ProcessRequest> requests;

Q_SIGNALS:
    void released();

private:
    bool m_isHeld = false;
    std::vector<std::pair<Matcher, std::string>> m_rules;
};

/// The window of somebody who is signed in, at the end of a mine or an audit whose outcome the test says.
class LastPagesWindow : public testing::Test {
protected:
    LastPagesWindow();

    void launch();
    [[nodiscard]] MineViewModel& flow() { return *world.page<MineViewModel>(); }
    [[nodiscard]] LocalPipeline& pipeline() { return *flow().pipeline(); }

    // After `launch`.

    /// Media of that length have been probed.
    void givenFootage(const std::string& name, const std::string& seconds);
    /// A mine in the folder `exportFolder`, written at that time.
    void givenVersion(int number, std::size_t moments, const QDateTime& written);
    /// Builds in Resolve end with this line.
    void givenBuildPrints(const std::string& line);
    /// A whole audit has run and told this.
    void givenAudit(const AuditReport& report);

    /// The page of that step stands, its change and the celebration over.
    void show(MineStep step, const QString& name);

    /// Eleven moments in three acts and four chapters.
    [[nodiscard]] static MiningResults lighthouseStory();
    /// Three moments, one repetition, one other take, three gaps.
    [[nodiscard]] static AuditReport lighthouseAudit();

    UiWorld world;
    std::shared_ptr<ToldTools> tools = std::make_shared<ToldTools>();
    std::string exportFolder;
    std::unique_ptr<WindowDriver> driver;
};

} // namespace zuvo::tests

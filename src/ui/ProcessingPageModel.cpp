#include "ui/ProcessingPageModel.h"

#include "base/Numbers.h"
#include "base/Text.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTimer>
#include <utility>

namespace zuvo {

namespace {

constexpr std::chrono::milliseconds dotInterval{500};
constexpr std::chrono::milliseconds factInterval{5000};
constexpr qsizetype dotStates = 4; // none to three

std::unique_ptr<QObject> startQtTimer(std::chrono::milliseconds interval, std::function<void()> tick) {
    auto timer = std::make_unique<QTimer>();
    QObject::connect(timer.get(), &QTimer::timeout, timer.get(), std::move(tick));
    timer->start(interval);
    return timer;
}

} // namespace

constexpr std::array<std::string_view, 10> FUN_FACTS = {
    "Every interview has a story waiting to be found",
    "The average mine yields 3 hidden gems",
    "Your raw earth stays local — never leaves the mine",
    "Echoes are captured to 20ms precision",
    "The canary reads your entire transcript in one pass",
    "The deepest mine we've explored was 8 hours of footage",
    "Each gem is timestamped to the spoken word",
    "The Lantern lets you guide where the AI digs",
    "Some of the best gems are found in the quietest moments",
    "Zuvo. Into the mine we go.",
};

ProcessingPageModel::ProcessingPageModel(QObject* parent) : ProcessingPageModel(startQtTimer, parent) {}

ProcessingPageModel::ProcessingPageModel(const StartTimer& startTimer, QObject* parent)
    : QObject(parent),
      m_dotTimer(startTimer(dotInterval, [this] { addDot(); })),
      m_factTimer(startTimer(factInterval, [this] { nextFact(); })) {}

void ProcessingPageModel::setFlow(MineViewModel* flow) {
    if (m_flow == flow)
        return;
    if (!m_flow.isNull())
        m_flow->pipeline()->disconnect(this);
    m_flow = flow;
    if (flow != nullptr) {
        const auto* pipeline = flow->pipeline().get();
        connect(pipeline, &LocalPipeline::stepChanged, this, &ProcessingPageModel::stageChanged);
        connect(pipeline, &LocalPipeline::progressChanged, this, &ProcessingPageModel::progressChanged);
        connect(pipeline, &LocalPipeline::errorMessageChanged, this, &ProcessingPageModel::errorMessageChanged);
    }
    m_log.setPipeline(flow == nullptr ? nullptr : flow->pipeline());
    Q_EMIT flowChanged();
    Q_EMIT stageChanged();
    Q_EMIT progressChanged();
    Q_EMIT errorMessageChanged();
}

void ProcessingPageModel::addDot() {
    m_dots = QString((m_dots.size() + 1) % dotStates, QLatin1Char('.'));
    Q_EMIT dotsChanged();
}

void ProcessingPageModel::nextFact() {
    m_currentFact = (m_currentFact + 1) % FUN_FACTS.size();
    Q_EMIT currentFactChanged();
}

QString ProcessingPageModel::heading() const {
    return QStringLiteral("Descending into the mine") + m_dots;
}

QString ProcessingPageModel::stage() const {
    if (m_flow.isNull())
        return {};
    const auto words = rawValue(m_flow->pipeline()->step());
    return QString::fromUtf8(words.data(), static_cast<qsizetype>(words.size()));
}

double ProcessingPageModel::progress() const {
    return m_flow.isNull() ? 0.0 : m_flow->pipeline()->progress();
}

QString ProcessingPageModel::creditsUsed() const {
    return QString::fromStdString(fixedText(progress(), 1)) + QStringLiteral(" credits used");
}

QString ProcessingPageModel::funFact() const {
    const auto& fact = FUN_FACTS.at(m_currentFact);
    return QString::fromUtf8(fact.data(), static_cast<qsizetype>(fact.size()));
}

QString ProcessingPageModel::errorMessage() const {
    if (!hasError())
        return {};
    return QString::fromStdString(withoutControlCharacters(*m_flow->pipeline()->errorMessage()));
}

bool ProcessingPageModel::hasError() const {
    return !m_flow.isNull() && m_flow->pipeline()->errorMessage().has_value();
}

void ProcessingPageModel::copyLines(int first, int last) {
    if (first >= 0 && last >= 0)
        QGuiApplication::clipboard()->setText(m_log.plainText(first, last));
}

void ProcessingPageModel::cancel() {
    // A page that is on its way out has nothing to cancel.
    if (!m_flow.isNull() && m_flow->currentStep() == MineStep::processing)
        m_flow->cancelMining();
}

} // namespace zuvo

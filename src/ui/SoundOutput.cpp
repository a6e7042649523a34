#include "ui/SoundOutput.h"

#include <QAudioDevice>
#include <QAudioFormat>
#include <QAudioSink>
#include <QElapsedTimer>
#include <QMediaDevices>
#include <algorithm>

namespace zuvo {

namespace {

/// What a device holds ahead: less stutters on a busy machine, more is heard on after a stop.
constexpr double bufferSeconds = 0.2;

constexpr double millisecondsPerSecond = 1e3;

qsizetype bufferBytes(SoundFormat format) {
    return static_cast<qsizetype>(bufferSeconds * format.sampleRate) * format.bytesPerFrame();
}

QAudioFormat qtFormat(SoundFormat format) {
    QAudioFormat made;
    made.setSampleRate(format.sampleRate);
    made.setChannelCount(format.channels);
    made.setSampleFormat(QAudioFormat::Int16);
    return made;
}

/// Ours if the device takes it, else as near as the device's own comes.
SoundFormat formatFor(const QAudioDevice& device) {
    const SoundFormat wished;
    const auto own = device.preferredFormat();
    if (device.isFormatSupported(qtFormat(wished)) || own.sampleRate() <= 0)
        return wished;
    return {own.sampleRate(), std::clamp(own.channelCount(), 1, wished.channels)};
}

class DeviceOutput final : public SoundOutput {
public:
    explicit DeviceOutput(const QAudioDevice& device)
        : m_format(formatFor(device)), m_sink(device, qtFormat(m_format)) {
        m_sink.setBufferSize(bufferBytes(m_format));
    }

    [[nodiscard]] SoundFormat format() const override { return m_format; }
    void begin() override { m_device = m_sink.start(); }
    [[nodiscard]] qsizetype room() const override { return m_device == nullptr ? 0 : m_sink.bytesFree(); }
    void write(const QByteArray& frames) override { m_written += std::max<qint64>(m_device->write(frames), 0); }

    [[nodiscard]] double playedSeconds() const override {
        const auto held = std::max<qint64>(m_sink.bufferSize() - m_sink.bytesFree(), 0);
        return static_cast<double>(std::max<qint64>(m_written - held, 0)) / m_format.bytesPerSecond();
    }

    [[nodiscard]] bool hasFailed() const override {
        const auto error = m_sink.error();
        return m_device == nullptr || (error != QAudio::NoError && error != QAudio::UnderrunError);
    }

private:
    SoundFormat m_format;
    QAudioSink m_sink;
    QIODevice* m_device = nullptr; ///< the sink's, once it has begun
    qint64 m_written = 0;          ///< bytes
};

class UnheardOutput final : public SoundOutput {
public:
    [[nodiscard]] SoundFormat format() const override { return {}; }
    void begin() override { m_time.start(); }
    [[nodiscard]] qsizetype room() const override {
        const auto passed = static_cast<qsizetype>(playedSeconds() * format().sampleRate) * format().bytesPerFrame();
        return bufferBytes(format()) - (m_written - passed);
    }
    void write(const QByteArray& frames) override { m_written += frames.size(); }
    [[nodiscard]] double playedSeconds() const override {
        if (!m_time.isValid())
            return 0.0;
        return std::min(static_cast<double>(m_time.elapsed()) / millisecondsPerSecond,
                        static_cast<double>(m_written) / format().bytesPerSecond());
    }
    [[nodiscard]] bool hasFailed() const override { return false; }

private:
    QElapsedTimer m_time;
    qsizetype m_written = 0; ///< bytes
};

} // namespace

std::unique_ptr<SoundOutput> desktopSoundOutput() {
    const auto device = QMediaDevices::defaultAudioOutput();
    if (device.isNull())
        return unheardSoundOutput();
    return std::make_unique<DeviceOutput>(device);
}

std::unique_ptr<SoundOutput> unheardSoundOutput() {
    return std::make_unique<UnheardOutput>();
}

} // namespace zuvo

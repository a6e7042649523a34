#pragma once

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QSocketNotifier>
#include <memory>
#include <string>

namespace zuvo {

/// Sound as it is heard: signed samples of 16 bits, the channels of one moment side by side.
struct SoundFormat {
    int sampleRate = 48000; ///< moments a second
    int channels = 2;

    [[nodiscard]] int bytesPerFrame() const { return channels * 2; }
    [[nodiscard]] int bytesPerSecond() const { return sampleRate * bytesPerFrame(); }
};

/// The first sound of a media file from one place on, decoded by ffmpeg in a process of its own. The process decodes a
/// little ahead of who takes the sound, then stands still; it ends with this object.
class SoundDecoding final : public QObject {
    Q_OBJECT
public:
    /// `ffmpeg` is the program's absolute path.
    explicit SoundDecoding(std::string ffmpeg, QObject* parent = nullptr);
    ~SoundDecoding() override;

    /// Decodes that file from so many seconds behind its first sample. Once.
    void start(const std::string& path, double seconds, SoundFormat format);

    /// Up to so many bytes of what has been decoded, in the order of the file. May be empty.
    [[nodiscard]] QByteArray take(qsizetype atMost);
    /// Bytes that can be taken now.
    [[nodiscard]] qsizetype waiting() const { return m_decoded.size(); }

    /// What is decoded ahead at most, in bytes, without what the system's own pipe holds.
    static constexpr qsizetype ahead = 128L * 1024;

Q_SIGNALS:
    /// There is more to `take`.
    void arrived();
    /// The file gave no sound, or ffmpeg cannot be started. A place behind the file's end is no failure: nothing
    /// arrives.
    void failed();

private:
    void read();

    std::string m_ffmpeg;
    QByteArray m_decoded;
    std::unique_ptr<QSocketNotifier> m_notifier;
    int m_pipe = -1; ///< the end that is read
    bool m_hasDecoded = false;
    QProcess m_process;
};

} // namespace zuvo

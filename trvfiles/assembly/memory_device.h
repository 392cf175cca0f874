#pragma once

/// @file
/// Bytes in memory for Qt's readers.

#include <QIODevice>

#include <string_view>

namespace trv {

/// A device that reads bytes which somebody else owns, and copies only what is read. QBuffer takes
/// at most 2 GiB.
///
/// Threads: an object is used by one thread at a time.
class MemoryDevice final : public QIODevice {
public:
    /// Opens the device.
    ///
    /// @param bytes  have to outlive the device
    explicit MemoryDevice(std::string_view bytes);

    qint64 size() const override { return static_cast<qint64>(bytes_.size()); }
    bool seek(qint64 position) override;

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    const std::string_view bytes_;
    std::size_t next_ = 0;
};

}  // namespace trv

#include <trvfiles/assembly/memory_device.h>

#include <algorithm>
#include <cstddef>

namespace trv {

// The base class needs no buffer of its own.
MemoryDevice::MemoryDevice(std::string_view bytes) : bytes_(bytes) {
    setOpenMode(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool MemoryDevice::seek(qint64 position) {
    if (position > size() || !QIODevice::seek(position)) return false;
    next_ = static_cast<std::size_t>(position);
    return true;
}

qint64 MemoryDevice::readData(char* data, qint64 maxSize) {
    const std::string_view read = bytes_.substr(next_, static_cast<std::size_t>(maxSize));
    std::copy(read.begin(), read.end(), data);
    next_ += read.size();
    return static_cast<qint64>(read.size());
}

qint64 MemoryDevice::writeData(const char*, qint64) {
    return -1;
}

}  // namespace trv

// Little-endian byte building for the binary file formats (compound file, BIFF8).
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace paratzorep::renderer::detail {

class Bytes {
  public:
    Bytes& u8(std::uint8_t v) {
        datos_.push_back(static_cast<char>(v));
        return *this;
    }
    Bytes& u16(std::uint16_t v) { return u8(v & 0xFF).u8(v >> 8); }
    Bytes& u32(std::uint32_t v) { return u16(v & 0xFFFF).u16(v >> 16); }
    Bytes& u64(std::uint64_t v) { return u32(v & 0xFFFFFFFFu).u32(v >> 32); }
    Bytes& f64(double v) { return u64(std::bit_cast<std::uint64_t>(v)); }
    Bytes& ceros(std::size_t n) {
        datos_.append(n, '\0');
        return *this;
    }
    Bytes& crudo(std::string_view v) {
        datos_.append(v);
        return *this;
    }

    // Overwrites two bytes already written (a record's length once its payload is known).
    void parche16(std::size_t pos, std::uint16_t v) {
        datos_[pos] = static_cast<char>(v & 0xFF);
        datos_[pos + 1] = static_cast<char>(v >> 8);
    }
    void parche32(std::size_t pos, std::uint32_t v) {
        parche16(pos, v & 0xFFFF);
        parche16(pos + 2, v >> 16);
    }

    const std::string& str() const { return datos_; }
    std::size_t size() const { return datos_.size(); }
    void clear() { datos_.clear(); }

  private:
    std::string datos_;
};

inline std::uint16_t LeerU16(const char* p) {
    return static_cast<std::uint16_t>(static_cast<unsigned char>(p[0]) |
                                      static_cast<unsigned char>(p[1]) << 8);
}
inline std::uint32_t LeerU32(const char* p) {
    return LeerU16(p) | static_cast<std::uint32_t>(LeerU16(p + 2)) << 16;
}

}  // namespace paratzorep::renderer::detail

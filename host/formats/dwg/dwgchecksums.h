// The checksums of DWG files.
#pragma once

#include <cstdint>
#include <string_view>

namespace dwg
{

/// Of objects, sections and the object map; `seed` is 0xC0C1 in all of them.
std::uint16_t crc16(std::string_view bytes, std::uint16_t seed = 0xC0C1);

/// Of the pages of AC1018 and its kin.
std::uint32_t pageChecksum(std::uint32_t seed, std::string_view bytes);

/// Of the pages of AC1021 before they are packed.
std::uint32_t pageChecksum21(std::string_view bytes);
/// Of the pages and maps of AC1021, as they stand in the file.
std::uint64_t pageCrc64(std::string_view bytes);
/// Of the file header of AC1021.
std::uint64_t headerCrc64(std::string_view bytes);

} // namespace dwg

// The CRC-32 of zip and PNG (reflected polynomial 0xEDB88320) over memory.
// Every function works on the raw register: start from 0xFFFFFFFF, feed the
// bytes, and XOR the result with 0xFFFFFFFF at the end. All paths give the
// same value for the same bytes; UpdateCRC32 picks the fastest one this
// processor supports. Pure functions: any thread.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zt::package {

// table[i]: the register after shifting the byte i through it (the classic
// one-byte-at-a-time table).
const std::uint32_t* CRC32Table();

// Fastest available path.
std::uint32_t UpdateCRC32(std::uint32_t Crc, const void* Data, std::size_t Len);

// One byte per step through CRC32Table(): the reference the others match.
std::uint32_t UpdateCRC32Bytewise(std::uint32_t Crc, const void* Data, std::size_t Len);
// Sixteen bytes per step through sixteen tables; runs on every processor.
std::uint32_t UpdateCRC32Slicing(std::uint32_t Crc, const void* Data, std::size_t Len);

// Carry-less multiplication folding (x86-64 PCLMULQDQ, 128-bit lanes), and
// the same with 256-bit lanes (VPCLMULQDQ with AVX2). Call only when the
// matching Has... function is true.
bool HasCRC32Clmul();
bool HasCRC32WideClmul();
std::uint32_t UpdateCRC32Clmul(std::uint32_t Crc, const void* Data, std::size_t Len);
std::uint32_t UpdateCRC32WideClmul(std::uint32_t Crc, const void* Data, std::size_t Len);

}  // namespace zt::package

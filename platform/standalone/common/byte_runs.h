// byte_runs.h: the bytes in which two memory images differ.
//
// Encoded as a row of runs, each two little-endian 16-bit words, the bytes to leave as they are and the bytes that
// follow, and then those bytes. The encoding is part of the file format.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace pim_store {

using byte_view = std::span<const std::byte>;

// The runs that turn `base` into `image`; both are of the same size. Empty when they are equal.
std::vector<std::byte> byte_runs(byte_view image, byte_view base);

// The runs that turn zeros into `image`.
std::vector<std::byte> byte_runs(byte_view image);

// Applies runs to an image. Fails with CORRUPT when they reach past its end.
void apply_byte_runs(byte_view runs, std::span<std::byte> image);

// Writes all of an image, which need not be zeroed: the runs applied to zeros. Fails likewise.
void expand_byte_runs(byte_view runs, std::span<std::byte> image);

} // namespace pim_store

#include "support/Sha256.h"

#if defined(__x86_64__)
#include <cpuid.h>
#include <immintrin.h>
#endif

#include <array>
#include <bit>
#include <cstring>

#include "kestrin/Types.h"

namespace kestrin {

namespace {

using State = std::array<uint32, 8>;

constexpr State Initial = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                           0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};

constexpr std::array<uint32, 64> Constants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

constexpr size_t BlockSize = 64;

void DigestBlock(State& state, const unsigned char* block) {
  std::array<uint32, 64> words{};
  for (size_t i = 0; i < 16; ++i)
    words[i] = uint32{block[4 * i]} << 24 | uint32{block[4 * i + 1]} << 16 |
               uint32{block[4 * i + 2]} << 8 | uint32{block[4 * i + 3]};
  for (size_t i = 16; i < 64; ++i) {
    const uint32 early = words[i - 15], late = words[i - 2];
    words[i] = words[i - 16] + words[i - 7] +
               (std::rotr(early, 7) ^ std::rotr(early, 18) ^ early >> 3) +
               (std::rotr(late, 17) ^ std::rotr(late, 19) ^ late >> 10);
  }
  auto [a, b, c, d, e, f, g, h] = state;
  for (size_t i = 0; i < 64; ++i) {
    const uint32 first = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) +
                         ((e & f) ^ (~e & g)) + Constants[i] + words[i];
    const uint32 second =
        (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
    h = g, g = f, f = e, e = d + first, d = c, c = b, b = a, a = first + second;
  }
  const State mixed = {a, b, c, d, e, f, g, h};
  for (size_t i = 0; i < state.size(); ++i) state[i] += mixed[i];
}

void Digest(State& state, const unsigned char* blocks, size_t count) {
  for (; count > 0; --count, blocks += BlockSize) DigestBlock(state, blocks);
}

#if defined(__x86_64__)

bool ProcessorDigests() {
  unsigned a = 0, b = 0, c = 0, d = 0;
  constexpr unsigned HasSha = 1u << 29;
  const bool digests = __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & HasSha) != 0;
  return digests && __get_cpuid(1, &a, &b, &c, &d) != 0 && (c & bit_SSE4_1) != 0;
}

/// The same by the processor's own instructions, ten times as fast. They keep the state as a, b, e,
/// f and c, d, g, h, and make four rounds, or four words, at a time.
__attribute__((target("sha,sse4.1"))) void DigestByProcessor(State& state,
                                                             const unsigned char* blocks,
                                                             size_t count) {
  const __m128i bytesOfWords = _mm_set_epi64x(0x0c0d0e0f08090a0b, 0x0405060700010203);
  const auto load = [](const void* from) {
    return _mm_loadu_si128(static_cast<const __m128i*>(from));
  };
  auto [a, b, c, d, e, f, g, h] = std::bit_cast<std::array<int, 8>>(state);
  __m128i abef = _mm_set_epi32(a, b, e, f), cdgh = _mm_set_epi32(c, d, g, h);
  for (; count > 0; --count, blocks += BlockSize) {
    const __m128i abefBefore = abef, cdghBefore = cdgh;
    __m128i words[4];
    for (size_t i = 0; i < 4; ++i) words[i] = _mm_shuffle_epi8(load(blocks + 16 * i), bytesOfWords);
    for (size_t i = 0; i < 16; ++i) {
      __m128i& oldest = words[i % 4];
      const __m128i newest = words[(i + 3) % 4];
      const __m128i sum = _mm_add_epi32(oldest, load(&Constants[4 * i]));
      cdgh = _mm_sha256rnds2_epu32(cdgh, abef, sum);
      abef = _mm_sha256rnds2_epu32(abef, cdgh, _mm_shuffle_epi32(sum, 0x0e));
      const __m128i inTheMiddle = _mm_alignr_epi8(newest, words[(i + 2) % 4], 4);
      oldest = _mm_sha256msg2_epu32(
          _mm_add_epi32(_mm_sha256msg1_epu32(oldest, words[(i + 1) % 4]), inTheMiddle), newest);
    }
    abef = _mm_add_epi32(abef, abefBefore);
    cdgh = _mm_add_epi32(cdgh, cdghBefore);
  }
  const auto first = std::bit_cast<std::array<uint32, 4>>(abef);
  const auto second = std::bit_cast<std::array<uint32, 4>>(cdgh);
  state = {first[3], first[2], second[3], second[2], first[1], first[0], second[1], second[0]};
}

#else

bool ProcessorDigests() { return false; }
void DigestByProcessor(State& state, const unsigned char* blocks, size_t count) {
  Digest(state, blocks, count);
}

#endif

}  // namespace

std::string Sha256(std::string_view bytes, bool portable) {
  const auto digest = !portable && ProcessorDigests() ? DigestByProcessor : Digest;
  State state = Initial;
  const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
  const size_t left = bytes.size() % BlockSize;
  digest(state, data, bytes.size() / BlockSize);
  data += bytes.size() - left;
  // The rest, a bit that is set, and the length in bits as the last eight bytes of a block.
  std::array<unsigned char, 2 * BlockSize> end{};
  if (left > 0) std::memcpy(end.data(), data, left);
  end[left] = 0x80;
  const size_t size = left + 9 <= BlockSize ? BlockSize : 2 * BlockSize;
  const uint64 bits = uint64{bytes.size()} * 8;
  for (size_t i = 0; i < 8; ++i)
    end[size - 1 - i] = static_cast<unsigned char>(bits >> 8 * i & 0xff);
  digest(state, end.data(), size / BlockSize);
  constexpr char Digits[] = "0123456789abcdef";
  std::string text;
  for (const uint32 word : state)
    for (int shift = 28; shift >= 0; shift -= 4) text += Digits[word >> shift & 0xf];
  return text;
}

}  // namespace kestrin

#include "image/ImageProcess.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

// The live element runs these on every frame. Each kernel is a body of
// inline code instantiated once per instruction set (plain x86-64, SSSE3,
// AVX2) and picked at run time, so the shipped baseline build still uses the
// byte shuffles and wide vectors of the machine it runs on. The bodies are
// either plain fixed-length loops the compiler vectorises or portable vector
// expressions (GCC/Clang vector extensions); every variant gives the bytes of
// the plain per-pixel definitions, which the image tests check.
// OCULIX_IMAGE_ISA=baseline|ssse3|avx2 caps the choice (tests use it).

#define OCULIX_INLINE inline __attribute__((always_inline))

// 256-bit vector helpers are always inlined into the AVX2 variants, so the
// ABI note about passing such vectors without AVX does not apply.
#if defined(__GNUC__) // GCC and Clang
#pragma GCC diagnostic ignored "-Wpsabi"
#endif

namespace {

constexpr std::size_t kStackBytes = 2 * (3 * 8192 + 64);

bool Bad(const uchar* bits, unsigned width, unsigned height)
{
    return bits == nullptr || width == 0 || height == 0;
}

// Scratch memory: on the stack for every camera frame, else one allocation.
class Scratch
{
public:
    explicit Scratch(std::size_t bytes)
    {
        if (bytes > m_local.size()) {
            m_heap.resize(bytes);
            m_data = m_heap.data();
        } else {
            m_data = m_local.data();
        }
    }
    uchar* Data() { return m_data; }

private:
    std::array<uchar, kStackBytes> m_local;
    std::vector<uchar> m_heap;
    uchar* m_data = nullptr;
};

// ---------------------------------------------------------------- gray model

// Gray weights by repeated single-precision addition; the accumulated values
// differ from i * 0.3 in the last bits, and those bits decide some results.
struct GrayTables
{
    float red[256]; // the green table is the same sequence
    float blue[256];
    GrayTables()
    {
        float r = 0.0f;
        float b = 0.0f;
        for (int i = 0; i < 256; ++i) {
            red[i] = r;
            blue[i] = b;
            r += 0.3f;
            b += 0.11f;
        }
    }
};

const GrayTables& Tables()
{
    static const GrayTables tables;
    return tables;
}

OCULIX_INLINE unsigned ExactGray(const GrayTables& t, const uchar* px)
{
    return unsigned(int(t.red[px[2]] + t.red[px[1]] + t.blue[px[0]]));
}

// The integer model: with t = 30(R+G) + 11B the float sum lies within 1e-3
// of t/100, so its truncation is t/100 except when t is a nonzero multiple of
// 100; there the float may land just below the integer and the tables decide
// ("odd" pixels, about one in a hundred).

// ---------------------------------------------------------- vector helpers

typedef uchar V16u8 __attribute__((vector_size(16)));
typedef std::uint16_t V8u16 __attribute__((vector_size(16)));
typedef std::int16_t V8i16 __attribute__((vector_size(16)));
typedef uchar V32u8 __attribute__((vector_size(32)));
typedef std::uint16_t V16u16 __attribute__((vector_size(32)));
typedef std::int16_t V16i16 __attribute__((vector_size(32)));

OCULIX_INLINE V16u8 Load(const uchar* p)
{
    V16u8 v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

OCULIX_INLINE void Store(uchar* p, V16u8 v)
{
    std::memcpy(p, &v, sizeof v);
}

OCULIX_INLINE V8u16 WidenLow(V16u8 v)
{
    const V16u8 z = {};
    return (V8u16)__builtin_shufflevector(v, z, 0, 16, 1, 16, 2, 16, 3, 16, 4, 16, 5, 16, 6, 16, 7, 16);
}

OCULIX_INLINE V8u16 WidenHigh(V16u8 v)
{
    const V16u8 z = {};
    return (V8u16)__builtin_shufflevector(v, z, 8, 16, 9, 16, 10, 16, 11, 16, 12, 16, 13, 16, 14, 16, 15, 16);
}

// Gray of 16 pixels (48 bytes at px), one byte per pixel; odd marks the
// pixels that need the tables (0xFF).
OCULIX_INLINE V16u8 GrayOf16(const uchar* px, V16u8& odd)
{
    const V16u8 a = Load(px);
    const V16u8 b = Load(px + 16);
    const V16u8 c = Load(px + 32);
    const V16u8 blue = __builtin_shufflevector(
        __builtin_shufflevector(a, b, 0, 3, 6, 9, 12, 15, 18, 21, 24, 27, 30, -1, -1, -1, -1, -1), c, 0, 1, 2,
        3, 4, 5, 6, 7, 8, 9, 10, 17, 20, 23, 26, 29);
    const V16u8 green = __builtin_shufflevector(
        __builtin_shufflevector(a, b, 1, 4, 7, 10, 13, 16, 19, 22, 25, 28, 31, -1, -1, -1, -1, -1), c, 0, 1,
        2, 3, 4, 5, 6, 7, 8, 9, 10, 18, 21, 24, 27, 30);
    const V16u8 red = __builtin_shufflevector(
        __builtin_shufflevector(a, b, 2, 5, 8, 11, 14, 17, 20, 23, 26, 29, -1, -1, -1, -1, -1, -1), c, 0, 1,
        2, 3, 4, 5, 6, 7, 8, 9, 16, 19, 22, 25, 28, 31);
    const V8u16 tLow = (WidenLow(green) + WidenLow(red)) * 30 + WidenLow(blue) * 11;
    const V8u16 tHigh = (WidenHigh(green) + WidenHigh(red)) * 30 + WidenHigh(blue) * 11;
    const V8u16 qLow = tLow / 100;
    const V8u16 qHigh = tHigh / 100;
    const V8u16 zero = {};
    const V8i16 oddLow = (qLow * 100 == tLow) & (tLow != zero);
    const V8i16 oddHigh = (qHigh * 100 == tHigh) & (tHigh != zero);
    odd = __builtin_shufflevector(
        (V16u8)oddLow, (V16u8)oddHigh, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
    return __builtin_shufflevector(
        (V16u8)qLow, (V16u8)qHigh, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
}

// Writes each of 16 bytes into three channels.
OCULIX_INLINE void StoreTriple16(uchar* px, V16u8 v)
{
    Store(px, __builtin_shufflevector(v, v, 0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5));
    Store(px + 16, __builtin_shufflevector(v, v, 5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10));
    Store(px + 32,
        __builtin_shufflevector(v, v, 10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15));
}

// The same for 32 pixels (96 bytes at px) with AVX2's byte multiply-add:
// each pixel is spread to B, G, R, 0 and weighed (11, 30, 30, 0) in one
// instruction, about half the work of sorting the channels apart first.
#if defined(__x86_64__) || defined(__i386__)
__attribute__((target("avx2"))) OCULIX_INLINE __m256i Weighed8(const uchar* px)
{
    // Pixels 0-3 from the first 12 bytes, 4-7 from bytes 12-23 (loaded from
    // 8, so nothing past the 24 bytes is read).
    const __m256i bytes
        = _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(px + 8), reinterpret_cast<const __m128i*>(px));
    const __m256i spread = _mm256_shuffle_epi8(bytes,
        _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1, 4, 5, 6, -1, 7, 8, 9, -1, 10,
            11, 12, -1, 13, 14, 15, -1));
    return _mm256_maddubs_epi16(spread,
        _mm256_setr_epi8(11, 30, 30, 0, 11, 30, 30, 0, 11, 30, 30, 0, 11, 30, 30, 0, 11, 30, 30, 0, 11, 30,
            30, 0, 11, 30, 30, 0, 11, 30, 30, 0));
}

// Gray (t / 100) and the odd mask of 16 pixels' t values.
__attribute__((target("avx2"))) OCULIX_INLINE void Divide(__m256i t, __m256i& q, __m256i& odd)
{
    q = _mm256_srli_epi16(_mm256_mulhi_epu16(t, _mm256_set1_epi16(5243)), 3); // exact below 43699
    const __m256i exact = _mm256_cmpeq_epi16(_mm256_mullo_epi16(q, _mm256_set1_epi16(100)), t);
    odd = _mm256_andnot_si256(_mm256_cmpeq_epi16(t, _mm256_setzero_si256()), exact);
}

// Not forced inline: the kernel body that calls it has no target of its own
// until it is inlined into the AVX2 entry, where this then joins it.
__attribute__((target("avx2"))) inline V32u8 GrayOf32(const uchar* px, V32u8& odd)
{
    // Each horizontal add leaves 4-pixel runs in the order 0, 8 | 4, 12 of
    // its two inputs; the final dword permutation puts them back in order.
    const __m256i low = _mm256_hadd_epi16(Weighed8(px), Weighed8(px + 24));
    const __m256i high = _mm256_hadd_epi16(Weighed8(px + 48), Weighed8(px + 72));
    __m256i qLow, qHigh, oddLow, oddHigh;
    Divide(low, qLow, oddLow);
    Divide(high, qHigh, oddHigh);
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    const __m256i gray = _mm256_permutevar8x32_epi32(_mm256_packus_epi16(qLow, qHigh), order);
    const __m256i flags = _mm256_permutevar8x32_epi32(_mm256_packs_epi16(oddLow, oddHigh), order);
    V32u8 result;
    std::memcpy(&result, &gray, sizeof result);
    std::memcpy(&odd, &flags, sizeof odd);
    return result;
}
#endif

// Writes 32 bytes in two 128-bit halves 48 bytes apart.
OCULIX_INLINE void Store2(uchar* p, V32u8 v)
{
    Store(p, __builtin_shufflevector(v, v, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
    Store(p + 48,
        __builtin_shufflevector(v, v, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31));
}

OCULIX_INLINE void StoreTriple32(uchar* px, V32u8 v)
{
    Store2(px,
        __builtin_shufflevector(v, v, 0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5, 16, 16, 16, 17, 17, 17,
            18, 18, 18, 19, 19, 19, 20, 20, 20, 21));
    Store2(px + 16,
        __builtin_shufflevector(v, v, 5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10, 21, 21, 22, 22, 22,
            23, 23, 23, 24, 24, 24, 25, 25, 25, 26, 26));
    Store2(px + 32,
        __builtin_shufflevector(v, v, 10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15, 26, 27,
            27, 27, 28, 28, 28, 29, 29, 29, 30, 30, 30, 31, 31, 31));
}

// Runs of pixels: the whole buffer when rows carry no padding, else row by row.
struct Runs
{
    uchar* bits;
    std::size_t stride;
    std::size_t pixels; // per run
    unsigned count;
    Runs(uchar* b, unsigned width, unsigned height)
        : bits(b)
        , stride(DibStride(width))
    {
        if (stride == std::size_t(width) * 3) {
            pixels = std::size_t(width) * height;
            count = 1;
        } else {
            pixels = width;
            count = height;
        }
    }
    uchar* Run(unsigned i) const { return bits + i * stride; }
};

// ------------------------------------------------------------------ kernels

struct FlipKernel
{
    static OCULIX_INLINE void Run(uchar* bits, unsigned width, unsigned height)
    {
        const std::size_t stride = DibStride(width);
        // Swapping rows pairwise gives the bytes of a reversed copy at a third
        // of the memory traffic.
        uchar chunk[4096];
        for (unsigned top = 0, bottom = height - 1; top < bottom; ++top, --bottom) {
            uchar* a = bits + top * stride;
            uchar* b = bits + bottom * stride;
            for (std::size_t done = 0; done < stride; done += sizeof chunk) {
                const std::size_t n = std::min(sizeof chunk, stride - done);
                std::memcpy(chunk, a + done, n);
                std::memcpy(a + done, b + done, n);
                std::memcpy(b + done, chunk, n);
            }
        }
    }
};

struct MirrorKernel
{
    // Result byte j of a row is old byte (stride - 3) - j + 2 (j % 3): pixel x
    // comes from (stride - 3) - 3x, so a padded row shifts by its padding and
    // the padding bytes enter the picture. The result's padding is zero.
    // A block of 16 pixels reverses the pixel order of a 48-byte window w:
    // out[i] = w[45 - i + 2 (i % 3)], three two-vector shuffles.
    static OCULIX_INLINE void Block(const uchar* w, uchar* out)
    {
        Store(out,
            __builtin_shufflevector(
                Load(w + 30), Load(w + 32), 15, 30, 31, 12, 13, 14, 9, 10, 11, 6, 7, 8, 3, 4, 5, 0));
        Store(out + 16,
            __builtin_shufflevector(
                Load(w + 15), Load(w + 17), 30, 31, 12, 13, 14, 9, 10, 11, 6, 7, 8, 3, 4, 5, 0, 1));
        Store(out + 32,
            __builtin_shufflevector(
                Load(w), Load(w + 2), 31, 12, 13, 14, 9, 10, 11, 6, 7, 8, 3, 4, 5, 0, 1, 2));
    }

    static OCULIX_INLINE void Run(uchar* bits, unsigned width, unsigned height)
    {
        const std::size_t stride = DibStride(width);
        const std::size_t bytes = std::size_t(width) * 3;
        Scratch scratch(stride);
        uchar* row = scratch.Data();
        for (unsigned y = 0; y < height; ++y) {
            uchar* dst = bits + y * stride;
            std::memcpy(row, dst, stride);
            std::size_t j = 0;
            for (; j + 48 <= bytes; j += 48)
                Block(row + stride - 48 - j, dst + j);
            const uchar* last = row + stride - 3;
            for (; j < bytes; ++j)
                dst[j] = last[std::ptrdiff_t(2 * (j % 3)) - std::ptrdiff_t(j)];
            std::memset(dst + bytes, 0, stride - bytes);
        }
    }
};

// Gray, or binary (gray below cut black, others white); kWide uses 256-bit
// vectors.
template <bool kBinary, bool kWide> struct GrayKernel
{
    static OCULIX_INLINE uchar Map(unsigned gray, uchar cut)
    {
        if constexpr (kBinary)
            return gray < cut ? 0 : 255;
        return uchar(gray);
    }

    // Maps the block's gray values to what is stored. The integer model is at
    // most one above the true gray, so for binary only odd pixels whose model
    // value equals the threshold can change side; the others need no fixing.
    template <typename V> static OCULIX_INLINE V Finish(V gray, V& odd, uchar cut)
    {
        if constexpr (kBinary) {
            const V cutVector = V {} + cut;
            odd &= (V)(gray == cutVector);
            return (V)(gray >= cutVector);
        }
        return gray;
    }

    // Pixels go in chunks: the vector pass stores the integer model's values
    // and marks odd pixels without a branch, then a short pass recomputes the
    // marked ones from a copy of the chunk. About one pixel in a hundred is
    // odd, spread at random, so a branch per block would mispredict often.
    static constexpr std::size_t kChunk = 512;

    static OCULIX_INLINE void Run(uchar* bits, unsigned width, unsigned height, uchar cut)
    {
        const GrayTables& tables = Tables();
        const Runs runs(bits, width, height);
        uchar original[3 * kChunk];
        alignas(32) uchar odd[kChunk];
        for (unsigned r = 0; r < runs.count; ++r) {
            for (std::size_t start = 0; start < runs.pixels; start += kChunk) {
                uchar* chunk = runs.Run(r) + 3 * start;
                const std::size_t n = std::min(kChunk, runs.pixels - start);
                // Each block is kept before it is overwritten, copied at a
                // fixed size from registers' worth of bytes just read: one
                // copy of the whole chunk became a slow string move.
                std::size_t x = 0;
                if constexpr (kWide) {
                    for (; x + 32 <= n; x += 32) {
                        std::memcpy(original + 3 * x, chunk + 3 * x, 96);
                        V32u8 flags;
                        const V32u8 gray = GrayOf32(chunk + 3 * x, flags);
                        StoreTriple32(chunk + 3 * x, Finish(gray, flags, cut));
                        std::memcpy(odd + x, &flags, sizeof flags);
                    }
                }
                for (; x + 16 <= n; x += 16) {
                    std::memcpy(original + 3 * x, chunk + 3 * x, 48);
                    V16u8 flags;
                    const V16u8 gray = GrayOf16(chunk + 3 * x, flags);
                    StoreTriple16(chunk + 3 * x, Finish(gray, flags, cut));
                    std::memcpy(odd + x, &flags, sizeof flags);
                }
                const std::size_t vectored = x;
                for (; x < n; ++x) {
                    uchar* px = chunk + 3 * x;
                    px[0] = px[1] = px[2] = Map(ExactGray(tables, px), cut);
                }
                for (std::size_t word = 0; word < vectored; word += 8) {
                    std::uint64_t f;
                    std::memcpy(&f, odd + word, sizeof f);
                    while (f != 0) {
                        const unsigned bit = unsigned(__builtin_ctzll(f));
                        const std::size_t k = word + bit / 8;
                        uchar* px = chunk + 3 * k;
                        px[0] = px[1] = px[2] = Map(ExactGray(tables, original + 3 * k), cut);
                        f &= ~(std::uint64_t(0xFF) << (bit & ~7u));
                    }
                }
            }
        }
    }
};

struct NegativeKernel
{
    static OCULIX_INLINE void Run(uchar* bits, unsigned width, unsigned height)
    {
        const Runs runs(bits, width, height);
        for (unsigned r = 0; r < runs.count; ++r) {
            uchar* row = runs.Run(r);
            const std::size_t bytes = runs.pixels * 3;
            std::size_t i = 0;
            for (; i + 64 <= bytes; i += 64)
                for (unsigned k = 0; k < 64; ++k)
                    row[i + k] = uchar(~row[i + k]);
            for (; i < bytes; ++i)
                row[i] = uchar(~row[i]);
        }
    }
};

struct EmbossKernel
{
    // a - b + 128 as unsigned, 255 above 255: a negative difference wraps and
    // turns white like a large positive one.
    static OCULIX_INLINE void Block(uchar* __restrict a, const uchar* __restrict b)
    {
        for (unsigned k = 0; k < 64; ++k) {
            const std::uint16_t v = std::uint16_t(a[k] - b[k] + 128);
            a[k] = uchar(v > 255 ? 255 : v);
        }
    }

    static OCULIX_INLINE void Run(uchar* bits, unsigned width, unsigned height)
    {
        const std::size_t stride = DibStride(width);
        // In place is safe: row y reads only row y + 1, which is still
        // untouched. A 64-byte block never reaches the bytes it reads, which
        // lie a whole row further on.
        const std::size_t bytes = (std::size_t(width) - 1) * 3;
        for (unsigned y = 0; y + 1 < height; ++y) {
            uchar* a = bits + y * stride;
            const uchar* b = a + stride + 3;
            std::size_t i = 0;
            for (; i + 64 <= bytes; i += 64)
                Block(a + i, b + i);
            for (; i < bytes; ++i) {
                const unsigned v = unsigned(a[i] - b[i] + 128);
                a[i] = uchar(v > 255 ? 255 : v);
            }
            a[bytes] = a[bytes + 1] = a[bytes + 2] = 128;
        }
        std::memset(bits + std::size_t(height - 1) * stride, 128, stride);
    }
};

struct SharpenKernel
{
    static OCULIX_INLINE void Block(uchar* __restrict out, const uchar* __restrict here,
        const uchar* __restrict above, const uchar* __restrict below)
    {
        const uchar* left = here - 3;
        const uchar* right = here + 3;
        for (unsigned k = 0; k < 32; ++k) {
            const std::int16_t v = std::int16_t(5 * here[k] - left[k] - right[k] - above[k] - below[k]);
            out[k] = uchar(v < 0 ? 0 : v > 255 ? 255 : v);
        }
    }

    static OCULIX_INLINE void Run(uchar* bits, unsigned width, unsigned height)
    {
        const std::size_t stride = DibStride(width);
        // Every result reads the original picture. Rows above y are already
        // written, so the originals of rows y - 1 and y are kept aside; row
        // y + 1 is still original in place. Same bytes as a whole copy.
        Scratch scratch(2 * stride);
        uchar* above = scratch.Data();
        uchar* here = above + stride;
        std::memcpy(above, bits, stride);
        const std::size_t end = (std::size_t(width) - 1) * 3;
        for (unsigned y = 1; y + 1 < height; ++y) {
            uchar* out = bits + y * stride;
            const uchar* below = out + stride;
            std::memcpy(here, out, stride);
            std::size_t i = 3;
            for (; i + 32 <= end; i += 32)
                Block(out + i, here + i, above + i, below + i);
            for (; i < end; ++i) {
                const int v = 5 * here[i] - here[i - 3] - here[i + 3] - above[i] - below[i];
                out[i] = uchar(v < 0 ? 0 : v > 255 ? 255 : v);
            }
            std::swap(above, here);
        }
    }
};

struct OffsetKernel
{
    // Offsets 0..255: each sum is kept below 256 and is 255 otherwise, a
    // saturating add. 48 bytes hold a whole number of pixels and vectors.
    static OCULIX_INLINE void Run(uchar* bits, unsigned width, unsigned height, const uchar* add48)
    {
        const V16u8 add0 = Load(add48);
        const V16u8 add1 = Load(add48 + 16);
        const V16u8 add2 = Load(add48 + 32);
        const Runs runs(bits, width, height);
        for (unsigned r = 0; r < runs.count; ++r) {
            uchar* row = runs.Run(r);
            const std::size_t bytes = runs.pixels * 3;
            std::size_t i = 0;
            for (; i + 48 <= bytes; i += 48) {
                uchar* p = row + i;
                const V16u8 a = Load(p);
                const V16u8 b = Load(p + 16);
                const V16u8 c = Load(p + 32);
                const V16u8 sa = a + add0;
                const V16u8 sb = b + add1;
                const V16u8 sc = c + add2;
                Store(p, sa | (V16u8)(sa < a));
                Store(p + 16, sb | (V16u8)(sb < b));
                Store(p + 32, sc | (V16u8)(sc < c));
            }
            for (unsigned k = 0; i < bytes; ++i, ++k) {
                const unsigned v = row[i] + add48[k];
                row[i] = uchar(v > 255 ? 255 : v);
            }
        }
    }
};

// ------------------------------------------------------------- dispatching

enum class Isa { Baseline, Ssse3, Avx2 };

Isa DetectIsa()
{
#if defined(__x86_64__) || defined(__i386__)
    Isa best = Isa::Baseline;
    if (__builtin_cpu_supports("avx2"))
        best = Isa::Avx2;
    else if (__builtin_cpu_supports("ssse3"))
        best = Isa::Ssse3;
    const char* cap = std::getenv("OCULIX_IMAGE_ISA");
    if (cap != nullptr) {
        if (std::strcmp(cap, "baseline") == 0)
            best = Isa::Baseline;
        else if (std::strcmp(cap, "ssse3") == 0 && best == Isa::Avx2)
            best = Isa::Ssse3;
    }
    return best;
#else
    return Isa::Baseline;
#endif
}

Isa CurrentIsa()
{
    static const Isa isa = DetectIsa();
    return isa;
}

#if defined(__x86_64__) || defined(__i386__)
template <typename Kernel, typename... Args> __attribute__((target("avx2"))) void RunAvx2(Args... args)
{
    Kernel::Run(args...);
}

template <typename Kernel, typename... Args> __attribute__((target("ssse3"))) void RunSsse3(Args... args)
{
    Kernel::Run(args...);
}
#endif

template <typename Kernel, typename... Args> void RunBaseline(Args... args)
{
    Kernel::Run(args...);
}

// Wide is the kernel for AVX2 when it differs from the narrow one.
template <typename Kernel, typename Wide = Kernel, typename... Args> void Dispatch(Args... args)
{
#if defined(__x86_64__) || defined(__i386__)
    switch (CurrentIsa()) {
    case Isa::Avx2:
        RunAvx2<Wide>(args...);
        return;
    case Isa::Ssse3:
        RunSsse3<Kernel>(args...);
        return;
    case Isa::Baseline:
        break;
    }
#endif
    RunBaseline<Kernel>(args...);
}

// Fill the pixel bytes of every row (never the padding) with one value.
void FillPixels(uchar* bits, unsigned width, unsigned height, uchar value)
{
    const std::size_t stride = DibStride(width);
    for (unsigned y = 0; y < height; ++y)
        std::memset(bits + y * stride, value, std::size_t(width) * 3);
}

} // namespace

int FlipVertical(uchar* bits, unsigned width, unsigned height)
{
    if (Bad(bits, width, height))
        return -1;
    FlipKernel::Run(bits, width, height); // memcpy bound; nothing to pick
    return 0;
}

int MirrorHorizontal(uchar* bits, unsigned width, unsigned height)
{
    if (Bad(bits, width, height))
        return -1;
    Dispatch<MirrorKernel>(bits, width, height);
    return 0;
}

int Gray(uchar* bits, unsigned width, unsigned height)
{
    if (Bad(bits, width, height))
        return -1;
    Dispatch<GrayKernel<false, false>, GrayKernel<false, true>>(bits, width, height, uchar(0));
    return 0;
}

int Negative(uchar* bits, unsigned width, unsigned height)
{
    if (Bad(bits, width, height))
        return -1;
    Dispatch<NegativeKernel>(bits, width, height);
    return 0;
}

int Binary(uchar* bits, unsigned width, unsigned height, int threshold)
{
    if (Bad(bits, width, height))
        return -1;
    // The gray value never exceeds 181 and the comparison is unsigned: 0
    // whitens everything, a negative or large threshold blackens everything.
    const unsigned level = unsigned(threshold);
    if (level == 0 || level > 255) {
        FillPixels(bits, width, height, level == 0 ? 255 : 0);
        return 0;
    }
    Dispatch<GrayKernel<true, false>, GrayKernel<true, true>>(bits, width, height, uchar(level));
    return 0;
}

int Emboss(uchar* bits, unsigned width, unsigned height)
{
    if (Bad(bits, width, height))
        return -1;
    Dispatch<EmbossKernel>(bits, width, height);
    return 0;
}

void Sharpen(uchar* bits, unsigned width, unsigned height)
{
    // Pictures of one or two rows or columns have no interior pixel.
    if (Bad(bits, width, height) || height < 3 || width < 3)
        return;
    Dispatch<SharpenKernel>(bits, width, height);
}

int ColorOffset(uchar* bits, unsigned width, unsigned height, int red, int green, int blue)
{
    if (Bad(bits, width, height))
        return -1;
    if (red == 0 && green == 0 && blue == 0)
        return -1;
    if (red >= 0 && green >= 0 && blue >= 0 && red < 256 && green < 256 && blue < 256) {
        uchar add[48];
        for (unsigned k = 0; k < 48; k += 3) {
            add[k] = uchar(blue);
            add[k + 1] = uchar(green);
            add[k + 2] = uchar(red);
        }
        Dispatch<OffsetKernel>(bits, width, height, static_cast<const uchar*>(add));
        return 0;
    }
    // Any other int: a sum below zero is still "below 256" and its low byte
    // is stored; tables keep that exact.
    uchar map[3][256];
    const int offset[3] = { blue, green, red };
    for (int c = 0; c < 3; ++c)
        for (int v = 0; v < 256; ++v) {
            const long long sum = static_cast<long long>(v) + offset[c];
            map[c][v] = sum < 256 ? uchar(sum & 0xFF) : uchar(255);
        }
    const Runs runs(bits, width, height);
    for (unsigned r = 0; r < runs.count; ++r) {
        uchar* row = runs.Run(r);
        for (std::size_t x = 0; x < runs.pixels; ++x) {
            uchar* px = row + 3 * x;
            px[0] = map[0][px[0]];
            px[1] = map[1][px[1]];
            px[2] = map[2][px[2]];
        }
    }
    return 0;
}

#include "image/PaletteReduce.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <vector>

namespace {

constexpr int kColours = 256;

bool Transparent(QRgb c)
{
    return qAlpha(c) < 128;
}

// Keeps the picture's indices; every transparent entry folds into the first.
IndexedPicture FromPaletted(const QImage& source)
{
    IndexedPicture out;
    out.image = source.convertToFormat(QImage::Format_Indexed8);
    QVector<QRgb> table = out.image.colorTable();
    std::vector<int> remap(kColours);
    for (int i = 0; i < kColours; ++i) {
        remap[std::size_t(i)] = i;
        if (i < table.size() && Transparent(table[i])) {
            if (out.transparent < 0)
                out.transparent = i;
            remap[std::size_t(i)] = out.transparent;
            table[i] = qRgb(0, 0, 0);
        } else if (i < table.size()) {
            table[i] |= 0xFF000000u;
        }
    }
    int top = 0;
    for (int y = 0; y < out.image.height(); ++y) {
        uchar* line = out.image.scanLine(y);
        for (int x = 0; x < out.image.width(); ++x) {
            line[x] = uchar(remap[line[x]]);
            top = std::max(top, int(line[x]));
        }
    }
    // An index past the table shows black; the table grows to cover it.
    while (table.size() <= top)
        table.append(qRgb(0, 0, 0));
    out.image.setColorTable(table);
    return out;
}

// Colours are binned at six bits a channel for the median cut; each bin
// remembers the sum of its pixels so that a box's entry is their mean.
struct Bin
{
    quint32 key = 0; // r << 12 | g << 6 | b, six bits each
    qint64 count = 0;
    qint64 sum[3] = {};

    int Channel(int c) const { return int(key >> (12 - 6 * c)) & 63; }
};

// A run of bins [first, last) with the channel it spreads most along.
struct Box
{
    std::size_t first = 0, last = 0;
    int channel = 0;
    int range = 0;
    qint64 pixels = 0;
};

Box MakeBox(const std::vector<Bin>& bins, std::size_t first, std::size_t last)
{
    Box box { first, last };
    box.range = -1;
    for (int c = 0; c < 3; ++c) {
        int lo = 63, hi = 0;
        for (std::size_t i = first; i < last; ++i) {
            lo = std::min(lo, bins[i].Channel(c));
            hi = std::max(hi, bins[i].Channel(c));
        }
        if (hi - lo > box.range) {
            box.range = hi - lo;
            box.channel = c;
        }
    }
    for (std::size_t i = first; i < last; ++i)
        box.pixels += bins[i].count;
    return box;
}

QVector<QRgb> MedianCut(std::vector<Bin>& bins, int colours, std::vector<int>& binEntry)
{
    std::vector<Box> boxes { MakeBox(bins, 0, bins.size()) };
    while (int(boxes.size()) < colours) {
        // Split the box with the most pixels times its widest extent.
        std::size_t pick = boxes.size();
        qint64 bestScore = 0;
        for (std::size_t b = 0; b < boxes.size(); ++b) {
            const qint64 score = boxes[b].pixels * boxes[b].range;
            if (score > bestScore) {
                bestScore = score;
                pick = b;
            }
        }
        if (pick == boxes.size())
            break; // every box is one bin
        const Box box = boxes[pick];
        const int channel = box.channel;
        std::sort(bins.begin() + std::ptrdiff_t(box.first), bins.begin() + std::ptrdiff_t(box.last),
            [channel](const Bin& a, const Bin& b) { return a.Channel(channel) < b.Channel(channel); });
        // The weighted median, kept off both ends so that each half has a bin.
        std::size_t cut = box.first + 1;
        for (qint64 seen = bins[box.first].count; cut < box.last - 1 && seen * 2 < box.pixels; ++cut)
            seen += bins[cut].count;
        boxes[pick] = MakeBox(bins, box.first, cut);
        boxes.push_back(MakeBox(bins, cut, box.last));
    }
    // Each box's mean is an entry; every bin then takes its nearest entry,
    // which may lie across the cut's straight planes.
    std::vector<std::array<double, 3>> means(boxes.size());
    for (std::size_t b = 0; b < boxes.size(); ++b) {
        std::array<qint64, 3> sum {};
        for (std::size_t i = boxes[b].first; i < boxes[b].last; ++i)
            for (int c = 0; c < 3; ++c)
                sum[std::size_t(c)] += bins[i].sum[c];
        for (int c = 0; c < 3; ++c)
            means[b][std::size_t(c)] = double(sum[std::size_t(c)]) / double(boxes[b].pixels);
    }
    for (const Bin& bin : bins) {
        const double n = double(bin.count);
        double best = 1e300;
        for (std::size_t e = 0; e < means.size(); ++e) {
            double d = 0;
            for (int c = 0; c < 3; ++c) {
                const double v = double(bin.sum[c]) / n - means[e][std::size_t(c)];
                d += v * v;
            }
            if (d < best) {
                best = d;
                binEntry[bin.key] = int(e);
            }
        }
    }
    QVector<QRgb> palette;
    for (const auto& m : means)
        palette.append(qRgb(qRound(m[0]), qRound(m[1]), qRound(m[2])));
    return palette;
}

quint32 BinKey(QRgb c)
{
    return quint32(qRed(c) >> 2) << 12 | quint32(qGreen(c) >> 2) << 6 | quint32(qBlue(c) >> 2);
}

} // namespace

IndexedPicture ReduceToPalette(const QImage& source)
{
    if (source.isNull())
        return {};
    if (source.depth() <= 8 && source.format() != QImage::Format_Grayscale8)
        return FromPaletted(source);
    const QImage argb = source.convertToFormat(QImage::Format_ARGB32);
    const int w = argb.width(), h = argb.height();

    // Exact when the colours fit, a slot left for transparency.
    bool transparent = false;
    std::unordered_map<QRgb, int> exact;
    for (int y = 0; y < h && int(exact.size()) + transparent <= kColours; ++y) {
        const auto* px = reinterpret_cast<const QRgb*>(argb.constScanLine(y));
        for (int x = 0; x < w; ++x) {
            if (Transparent(px[x]))
                transparent = true;
            else
                exact.emplace(px[x] | 0xFF000000u, int(exact.size()));
        }
    }
    const bool fits = int(exact.size()) + transparent <= kColours;

    IndexedPicture out;
    out.image = QImage(w, h, QImage::Format_Indexed8);
    if (out.image.isNull())
        return {};
    QVector<QRgb> table;
    std::vector<int> binEntry;
    if (fits) {
        table.resize(int(exact.size()));
        for (const auto& [colour, index] : exact)
            table[index] = colour;
    } else {
        std::vector<Bin> all(std::size_t(1) << 18);
        for (int y = 0; y < h; ++y) {
            const auto* px = reinterpret_cast<const QRgb*>(argb.constScanLine(y));
            for (int x = 0; x < w; ++x) {
                if (Transparent(px[x]))
                    continue;
                Bin& bin = all[BinKey(px[x])];
                ++bin.count;
                bin.sum[0] += qRed(px[x]);
                bin.sum[1] += qGreen(px[x]);
                bin.sum[2] += qBlue(px[x]);
            }
        }
        std::vector<Bin> used;
        for (std::size_t k = 0; k < all.size(); ++k)
            if (all[k].count > 0) {
                all[k].key = quint32(k);
                used.push_back(all[k]);
            }
        binEntry.assign(all.size(), 0);
        table = MedianCut(used, kColours - transparent, binEntry);
    }
    if (transparent) {
        out.transparent = int(table.size());
        table.append(qRgb(0, 0, 0));
    }
    for (int y = 0; y < h; ++y) {
        const auto* px = reinterpret_cast<const QRgb*>(argb.constScanLine(y));
        uchar* line = out.image.scanLine(y);
        for (int x = 0; x < w; ++x) {
            if (Transparent(px[x]))
                line[x] = uchar(out.transparent);
            else
                line[x] = uchar(fits ? exact.at(px[x] | 0xFF000000u) : binEntry[BinKey(px[x])]);
        }
    }
    out.image.setColorTable(table);
    return out;
}

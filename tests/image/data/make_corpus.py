#!/usr/bin/python3
# Writes the picture corpus and expected.txt: for each file, the pixels it
# must give (0xAARRGGBB, rows top to bottom) or the words its refusal must
# contain. The pixels are computed here, not read back by any reader.
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))
W, H = 5, 3
lines = []


def rgb(x, y):
    return (40 * x + 10, 80 * y + 5, 200 - 30 * x)


def alpha(x, y):
    return [0, 60, 128, 200, 255][(x + y) % 5]


def gray(x, y):
    return 20 * x + 70 * y


def argb(r, g, b, a=255):
    return '%08x' % (a << 24 | r << 16 | g << 8 | b)


def put(name, data, expect):
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(data)
    lines.append('%s %s' % (name, expect))


def pixels(w, h, f):
    return 'pixels %dx%d %s' % (w, h, ' '.join(f(x, y) for y in range(h) for x in range(w)))


def refused(words):
    return 'refused ' + words


# ---- TGA ----------------------------------------------------------------
def tga_header(kind, bits, desc, w=W, h=H, maptype=0, first=0, length=0, entry=0, idlen=0):
    return struct.pack('<BBBHHBHHHHBB', idlen, maptype, kind, first, length, entry, 0, 0, w, h, bits, desc)


def tga_rows(order, w, h):
    """Picture rows in file order for a descriptor's origin bits."""
    ys = list(range(h)) if order & 0x20 else list(range(h - 1, -1, -1))
    xs = list(range(w - 1, -1, -1)) if order & 0x10 else list(range(w))
    return [[(x, y) for x in xs] for y in ys]


def tga_rle(pixel_bytes):
    """Run packets for equal neighbours, raw packets else; runs cross rows."""
    out, i = b'', 0
    while i < len(pixel_bytes):
        j = i + 1
        while j < len(pixel_bytes) and pixel_bytes[j] == pixel_bytes[i] and j - i < 128:
            j += 1
        if j - i > 1:
            out += bytes([0x80 | (j - i - 1)]) + pixel_bytes[i]
            i = j
        else:
            k = i + 1
            while k < len(pixel_bytes) and k - i < 128 and (k + 1 >= len(pixel_bytes) or pixel_bytes[k] != pixel_bytes[k + 1]):
                k += 1
            out += bytes([k - i - 1]) + b''.join(pixel_bytes[i:k])
            i = k
    return out


FOOTER = struct.pack('<II', 0, 0) + b'TRUEVISION-XFILE.\0'


def tga2(body_before_ext, attributes):
    """Appends an extension area with its attribute type and the footer."""
    ext = struct.pack('<H', 495) + b'\0' * 492 + bytes([attributes])
    return body_before_ext + ext + struct.pack('<II', len(body_before_ext), 0) + b'TRUEVISION-XFILE.\0'


def px24(x, y):
    r, g, b = rgb(x, y)
    return bytes([b, g, r])


for desc, tag in ((0x00, 'bl'), (0x20, 'tl'), (0x30, 'tr'), (0x10, 'br')):
    body = b''.join(px24(x, y) for row in tga_rows(desc, W, H) for (x, y) in row)
    put('tga24-%s.tga' % tag, tga_header(2, 24, desc) + body + FOOTER, pixels(W, H, lambda x, y: argb(*rgb(x, y))))

# Runs: the middle row repeats one colour, the RLE packets cross rows.
def runs(x, y):
    return rgb(0, 1) if y == 1 or (y == 2 and x < 2) else rgb(x, y)


body = [bytes([runs(x, y)[2], runs(x, y)[1], runs(x, y)[0]]) for row in tga_rows(0, W, H) for (x, y) in row]
put('tga24-rle.tga', tga_header(10, 24, 0) + tga_rle(body), pixels(W, H, lambda x, y: argb(*runs(x, y))))
rle24 = tga_header(10, 24, 0) + tga_rle(body)


def px32(x, y):
    r, g, b = rgb(x, y)
    return bytes([b, g, r, alpha(x, y)])


body32 = b''.join(px32(x, y) for row in tga_rows(0x28, W, H) for (x, y) in row)
with_alpha = pixels(W, H, lambda x, y: argb(*rgb(x, y), alpha(x, y)))
opaque = pixels(W, H, lambda x, y: argb(*rgb(x, y)))
put('tga32-alpha.tga', tga_header(2, 32, 0x28) + body32 + FOOTER, with_alpha)
put('tga32-noalphabits.tga', tga_header(2, 32, 0x20) + body32 + FOOTER, opaque)
put('tga32-ext-noalpha.tga', tga2(tga_header(2, 32, 0x28) + body32, 0), opaque)
put('tga32-ext-ignore.tga', tga2(tga_header(2, 32, 0x28) + body32, 2), opaque)
put('tga32-ext-alpha.tga', tga2(tga_header(2, 32, 0x28) + body32, 3), with_alpha)
rle32 = [px32(x, y) for row in tga_rows(0x08, W, H) for (x, y) in row]
put('tga32-rle-alpha.tga', tga_header(10, 32, 0x08) + tga_rle(rle32) + FOOTER, with_alpha)


# Premultiplied: colours 0 or 255 times alphas that divide 255, exact both ways.
def premul(x, y):
    a = [0, 51, 102, 255][(x + y) % 4]
    r, g, b = (255 if x % 2 else 0), 255, (255 if y % 2 else 0)
    return r, g, b, a


def premul_bytes(x, y):
    r, g, b, a = premul(x, y)
    return bytes([b * a // 255, g * a // 255, r * a // 255, a])


bodyp = b''.join(premul_bytes(x, y) for row in tga_rows(0x28, W, H) for (x, y) in row)
put('tga32-ext-premultiplied.tga', tga2(tga_header(2, 32, 0x28) + bodyp, 4),
    pixels(W, H, lambda x, y: argb(*premul(x, y)) if premul(x, y)[3] else '00000000'))


def px16(x, y):
    r, g, b = rgb(x, y)
    return struct.pack('<H', (r >> 3) << 10 | (g >> 3) << 5 | (b >> 3))


def widen(v):
    return (v >> 3 << 3) | (v >> 5)


put('tga16-555.tga', tga_header(2, 16, 0x20) + b''.join(px16(x, y) for row in tga_rows(0x20, W, H) for (x, y) in row),
    pixels(W, H, lambda x, y: argb(*(widen(c) for c in rgb(x, y)))))

gray_alpha = b''.join(bytes([gray(x, y), alpha(x, y)]) for row in tga_rows(0x08, W, H) for (x, y) in row)
put('tga16-grayalpha.tga', tga_header(3, 16, 0x08) + gray_alpha + FOOTER,
    pixels(W, H, lambda x, y: argb(gray(x, y), gray(x, y), gray(x, y), alpha(x, y))))
put('tga16-gray-noalphabits.tga', tga_header(3, 16, 0x00) + gray_alpha,
    pixels(W, H, lambda x, y: argb(gray(x, y), gray(x, y), gray(x, y))))
gray8 = [bytes([gray(x, y) if y != 1 else 7]) for row in tga_rows(0, W, H) for (x, y) in row]
put('tga8-gray-rle.tga', tga_header(11, 8, 0) + tga_rle(gray8),
    pixels(W, H, lambda x, y: argb(*(3 * [gray(x, y) if y != 1 else 7]))))


# Colour maps: a map starting at entry 2, indices 2..6.
def entry(i):
    return (30 * i, 255 - 20 * i, 17 * i)


def index(x, y):
    return 2 + (x + 2 * y) % 5


mapped = b''.join(bytes([index(x, y)]) for row in tga_rows(0, W, H) for (x, y) in row)
map24 = b''.join(bytes([entry(i)[2], entry(i)[1], entry(i)[0]]) for i in range(2, 7))
put('tga8-map24.tga', tga_header(1, 8, 0, maptype=1, first=2, length=5, entry=24) + map24 + mapped,
    pixels(W, H, lambda x, y: argb(*entry(index(x, y)))))
map32 = b''.join(bytes([entry(i)[2], entry(i)[1], entry(i)[0], 40 * i]) for i in range(2, 7))
put('tga8-map32-alpha.tga', tga_header(1, 8, 8, maptype=1, first=2, length=5, entry=32) + map32 + mapped,
    pixels(W, H, lambda x, y: argb(*entry(index(x, y)), 40 * index(x, y))))
put('tga8-map32-noalphabits.tga', tga_header(1, 8, 0, maptype=1, first=2, length=5, entry=32) + map32 + mapped,
    pixels(W, H, lambda x, y: argb(*entry(index(x, y)))))
rlemap = [bytes([index(x, y)]) for row in tga_rows(0, W, H) for (x, y) in row]
put('tga8-map24-rle.tga', tga_header(9, 8, 0, maptype=1, first=2, length=5, entry=24) + map24 + tga_rle(rlemap),
    pixels(W, H, lambda x, y: argb(*entry(index(x, y)))))

# Damaged: rows missing before an intact TGA 2 extension area and footer,
# a cut RLE stream, sizes no file this short can hold, a cut colour map.
big = tga_header(2, 24, 0, w=8, h=8) + b''.join(bytes([x, y, 9]) for y in range(8) for x in range(8))
put('tga24-truncated-ext.tga', tga2(big[:18 + 2 * 8 * 3], 0), refused('the file is truncated (2 of 8 rows)'))
put('tga24-rle-cut.tga', rle24[:-4], refused('the file is truncated (2 of 3 rows)'))
put('tga24-width32767.tga', tga_header(2, 24, 0, w=32767) + body[0] * 40, refused('the file is truncated (0 of 3 rows)'))
put('tga24-65535.tga', tga_header(2, 24, 0, w=65535, h=65535) + b'\x11' * 100, refused('too large'))
put('tga8-map-cut.tga', (tga_header(1, 8, 0, maptype=1, first=2, length=5, entry=24) + map24)[:25],
    refused('colour map is truncated'))
put('tga-header-cut.tga', tga_header(2, 24, 0)[:12], refused('header is truncated'))


# ---- PCX ----------------------------------------------------------------
def pcx_header(bits, planes, bpl, w=W, h=H, pal16=b'', encoding=1):
    head = struct.pack('<BBBBHHHHHH', 10, 5, encoding, bits, 0, 0, w - 1, h - 1, 72, 72)
    head += pal16.ljust(48, b'\0') + b'\0' + bytes([planes]) + struct.pack('<HH', bpl, 1)
    return head.ljust(128, b'\0')


def pcx_rle(data):
    out, i = b'', 0
    while i < len(data):
        j = i + 1
        while j < len(data) and data[j] == data[i] and j - i < 63:
            j += 1
        if j - i > 1 or data[i] >= 0xC0:
            out += bytes([0xC0 | (j - i), data[i]])
        else:
            out += bytes([data[i]])
        i = j
    return out


def mono(x, y):
    return (x + y) % 2


def pack_bits(values, per_byte, bpl):
    bits = 8 // per_byte
    out = b''
    for k in range(0, len(values), per_byte):
        v = 0
        for j, value in enumerate(values[k:k + per_byte]):
            v |= value << (8 - bits * (j + 1))
        out += bytes([v])
    return out.ljust(bpl, b'\0')


body = b''.join(pack_bits([mono(x, y) for x in range(W)], 8, 2) for y in range(H))
put('pcx1-mono.pcx', pcx_header(1, 1, 2, pal16=bytes([200, 0, 0, 0, 0, 200])) + pcx_rle(body),
    pixels(W, H, lambda x, y: argb(*(3 * [255 * mono(x, y)]))))
pal16 = b''.join(bytes([16 * i, 255 - 16 * i, 8 * i]) for i in range(16))


def nibble(x, y):
    return (3 * x + 5 * y) % 16


body = b''
for y in range(H):
    for plane in range(4):
        body += pack_bits([(nibble(x, y) >> plane) & 1 for x in range(W)], 8, 2)
put('pcx4-planes.pcx', pcx_header(1, 4, 2, pal16=pal16) + pcx_rle(body),
    pixels(W, H, lambda x, y: argb(16 * nibble(x, y), 255 - 16 * nibble(x, y), 8 * nibble(x, y))))
body = b''.join(pack_bits([nibble(x, y) for x in range(W)], 2, 4) for y in range(H))
put('pcx4-packed.pcx', pcx_header(4, 1, 4, pal16=pal16) + pcx_rle(body),
    pixels(W, H, lambda x, y: argb(16 * nibble(x, y), 255 - 16 * nibble(x, y), 8 * nibble(x, y))))
body = b''.join(pack_bits([nibble(x, y) % 4 for x in range(W)], 4, 2) for y in range(H))
put('pcx2-cga.pcx', pcx_header(2, 1, 2, pal16=pal16) + pcx_rle(body),
    pixels(W, H, lambda x, y: argb(16 * (nibble(x, y) % 4), 255 - 16 * (nibble(x, y) % 4), 8 * (nibble(x, y) % 4))))
pal256 = b'\x0c' + b''.join(bytes([i, (7 * i) % 256, 255 - i]) for i in range(256))


def idx(x, y):
    return (37 * x + 101 * y + 190) % 256


body = b''.join(bytes([idx(x, y) for x in range(W)]).ljust(6, b'\0') for y in range(H))
put('pcx8-palette.pcx', pcx_header(8, 1, 6) + pcx_rle(body) + pal256,
    pixels(W, H, lambda x, y: argb(idx(x, y), (7 * idx(x, y)) % 256, 255 - idx(x, y))))
put('pcx8-raw.pcx', pcx_header(8, 1, 6, encoding=0) + body + pal256,
    pixels(W, H, lambda x, y: argb(idx(x, y), (7 * idx(x, y)) % 256, 255 - idx(x, y))))
body = b''.join(bytes([rgb(x, y)[p] for x in range(W)]).ljust(6, b'\0') for y in range(H) for p in range(3))
put('pcx24.pcx', pcx_header(8, 3, 6) + pcx_rle(body), opaque)
pcx24 = pcx_header(8, 3, 6) + pcx_rle(body)
body = b''.join(bytes([(rgb(x, y) + (alpha(x, y),))[p] for x in range(W)]).ljust(6, b'\0')
                for y in range(H) for p in range(4))
put('pcx32-rgba.pcx', pcx_header(8, 4, 6) + pcx_rle(body), with_alpha)
put('pcx24-cut.pcx', pcx24[:-3], refused('the file is truncated (2 of 3 rows)'))
put('pcx8-width32767.pcx', pcx_header(8, 1, 32768, w=32767) + b'\x01' * 300, refused('the file is truncated (0 of 3 rows)'))
put('pcx8-65535.pcx', pcx_header(8, 1, 65535, w=65535, h=65535) + b'\x01' * 300, refused('too large'))


# ---- BMP ----------------------------------------------------------------
def bmp(bits, compression, data, w=W, h=H, colours=b'', used=0):
    off = 14 + 40 + len(colours)
    info = struct.pack('<IiiHHIIiiII', 40, w, h, 1, bits, compression, len(data), 2835, 2835, used, 0)
    return b'BM' + struct.pack('<IHHI', off + len(data), 0, 0, off) + info + colours + data


table = b''.join(bytes([(60 * i) % 256, 255 - 15 * i, 11 * i, 0]) for i in range(16))


def tcol(i):
    return (11 * i, 255 - 15 * i, (60 * i) % 256)


# Bottom row: a run of 3, then 3 pixels in absolute mode, the last past the
# row's end; the middle row starts with a move two right, two pixels; the
# top row ends early with the end of the picture. Skipped pixels are index 0.
rle8 = bytes([3, 5, 0, 3, 7, 8, 9, 0, 0, 0, 0, 2, 2, 0, 2, 6, 0, 0, 1, 4, 0, 1])
expect8 = {(0, 2): 5, (1, 2): 5, (2, 2): 5, (3, 2): 7, (4, 2): 8, (2, 1): 6, (3, 1): 6, (0, 0): 4}
put('bmp8-rle.bmp', bmp(8, 1, rle8, colours=table, used=16),
    pixels(W, H, lambda x, y: argb(*tcol(expect8.get((x, y), 0)))))
rle4 = bytes([5, 0x12, 0, 0, 0, 3, 0x34, 0x50, 0, 0, 2, 0xAB, 0, 1])
expect4 = {(0, 2): 1, (1, 2): 2, (2, 2): 1, (3, 2): 2, (4, 2): 1, (0, 1): 3, (1, 1): 4, (2, 1): 5, (0, 0): 10,
           (1, 0): 11}
put('bmp4-rle.bmp', bmp(4, 2, rle4, colours=table, used=16),
    pixels(W, H, lambda x, y: argb(*tcol(expect4.get((x, y), 0)))))
put('bmp8-rle-cut.bmp', bmp(8, 1, rle8[:12], colours=table, used=16), refused('the file is truncated (1 of 3 rows)'))
# Every row there, but no end marker.
put('bmp8-rle-noend.bmp', bmp(8, 1, bytes([5, 1, 0, 0, 5, 2, 0, 0, 5, 3, 0, 0]), colours=table, used=16),
    pixels(W, H, lambda x, y: argb(*tcol(3 - y))))
rows = b''.join((b''.join(px24(x, y) for x in range(W))).ljust(16, b'\0') for y in range(H - 1, -1, -1))
put('bmp24.bmp', bmp(24, 0, rows), opaque)
put('bmp24-cut.bmp', bmp(24, 0, rows)[:-17], refused('the file is truncated (1 of 3 rows)'))
put('bmp8-rle-topdown.bmp', bmp(8, 1, rle8, h=-H, colours=table, used=16), refused('depth or row order'))
put('bmp24-height30000.bmp', bmp(24, 0, rows, h=30000), refused('the file is truncated (3 of 30000 rows)'))


# ---- GIF (read by Qt's reader after our check) ----------------------------
def lzw_literals(indices, min_code=8, end=True):
    """Codes that only name colours, a clear before every 254 of them, so
    that the code width never grows."""
    clear = 1 << min_code
    codes = []
    for k, v in enumerate(indices):
        if k % 254 == 0:
            codes.append(clear)
        codes.append(v)
    if end:
        codes.append(clear + 1)
    acc, nbits, out = 0, 0, b''
    for c in codes:
        acc |= c << nbits
        nbits += min_code + 1
        while nbits >= 8:
            out += bytes([acc & 255])
            acc >>= 8
            nbits -= 8
    if nbits:
        out += bytes([acc & 255])
    blocks = b''.join(bytes([len(out[i:i + 255])]) + out[i:i + 255] for i in range(0, len(out), 255))
    return bytes([min_code]) + blocks + b'\0'


def gif(indices, palette, transparent=None, w=W, h=H, screen=None, data=None):
    sw, sh = screen or (w, h)
    table = b''.join(bytes(c) for c in palette).ljust(3 * 256, b'\0')
    out = b'GIF89a' + struct.pack('<HHBBB', sw, sh, 0xF7, 0, 0) + table
    if transparent is not None:
        out += bytes([0x21, 0xF9, 4, 1, 0, 0, transparent, 0])
    out += b'\x2c' + struct.pack('<HHHHB', 0, 0, w, h, 0)
    return out + (data if data is not None else lzw_literals(indices)) + b'\x3b'


gif_palette = [(20 * i, 200 - 10 * i, 7 * i) for i in range(12)]


def gidx(x, y):
    return (x + 3 * y) % 12


indices = [gidx(x, y) for y in range(H) for x in range(W)]
put('gif-few.gif', gif(indices, gif_palette), pixels(W, H, lambda x, y: argb(*gif_palette[gidx(x, y)])))
put('gif-transparent.gif', gif(indices, gif_palette, transparent=4),
    pixels(W, H, lambda x, y: argb(*gif_palette[gidx(x, y)], 0 if gidx(x, y) == 4 else 255)))
put('gif-short-data.gif', gif(indices, gif_palette, data=lzw_literals(indices[:2 * W + 1])),
    refused('the file is truncated (2 of 3 rows)'))
put('gif-cut.gif', gif(indices, gif_palette)[:-9], refused('the file is truncated (2 of 3 rows)'))
put('gif-frame-32767.gif', gif(indices, gif_palette, w=32767), refused('the file is truncated (0 of 3 rows)'))
put('gif-screen-32767.gif', gif(indices, gif_palette, screen=(32767, 32767)), refused('Unable to read image data'))


# ---- JPEG and PNG (read by Qt's readers, JPEG after our check) ------------
# Only a refusal: a lossy decoder's pixels are not for this list. Pillow
# writes the whole file; cut, it lacks its end-of-image marker.
import io
from PIL import Image
jpeg = io.BytesIO()
picture = Image.new('RGB', (48, 32))
picture.putdata([(5 * x, 7 * y, 100) for y in range(32) for x in range(48)])
picture.save(jpeg, 'JPEG', quality=90)
jpeg = jpeg.getvalue()
scan = jpeg.find(b'\xff\xda')
png = io.BytesIO()
picture.save(png, 'PNG')
put('png-cut.png', png.getvalue()[:len(png.getvalue()) // 2], refused('the file is truncated'))
put('jpeg-cut.jpg', jpeg[:scan + (len(jpeg) - scan) // 2], refused('the file is truncated'))

with open(os.path.join(HERE, 'expected.txt'), 'w') as f:
    f.write('# Written by make_corpus.py: file, then "pixels WxH 0xAARRGGBB..." (rows top to bottom)\n'
            '# or "refused <words of the reason>".\n')
    f.write('\n'.join(lines) + '\n')

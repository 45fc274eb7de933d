#pragma once

#include <QtGlobal>

class FCObjImage;

// Lays a drawn overlay over a picture: every overlay pixel that is not pure
// black replaces the picture's pixel; black (0, 0, 0) is transparent, so black
// shapes never reach a saved picture.
//
// The overlay is 24-bit (blue, green, red), bottom-up, rows padded to 4 bytes;
// its row r from the bottom lands on the picture's row r from the bottom, and
// pixels outside the picture are skipped. The write follows the picture's
// depth, in the classic form whose narrow depths let the high bits of the blue
// byte spill into the neighbouring pixels: 1 bit clears the pixel's bit and
// ORs in blue shifted to it; 4 bits keeps the other nibble and ORs in blue
// shifted to this one; 8 bits takes blue; 16 bits green * 256 + blue; 24 bits
// blue, green, red; 32 bits red * 65536 + green * 256 + blue, top byte 0.
void BurnInOverlay(FCObjImage& picture, const uchar* overlay, int width, int height);

// The constants of the exact functions to as many bits as these can ask for, cut off. Computed with
// whole numbers: pi by J. Machin's sum of two arcus tangents, ln 2 as 2 artanh(1/3).
#pragma once

#include "ITCUtilities/Maths/Fraction.h"

namespace corvantis {

// 1 / 2 pi, behind words of zeros in which an angle's place may lie.
inline constexpr int32_t kZerosOfInverseTurn = 2;
inline constexpr Fraction<27> kInverseTurn = {
    0,
    0,
    0x28BE60DB9391054A,
    0x7F09D5F47D4D3770,
    0x36D8A5664F10E410,
    0x7F9458EAF7AEF158,
    0x6DC91B8E909374B8,
    0x01924BBA82746487,
    0x3F877AC72C4A69CF,
    0xBA208D7D4BAED121,
    0x3A671C09AD17DF90,
    0x4E64758E60D4CE7D,
    0x272117E2EF7E4A0E,
    0xC7FE25FFF7816603,
    0xFBCBC462D6829B47,
    0xDB4D9FB3C9F2C26D,
    0xD3D18FD9A797FA8B,
    0x5D49EEB1FAF97C5E,
    0xCF41CE7DE294A4BA,
    0x9AFED7EC47E35742,
    0x1580CC11BF1EDAEA,
    0xFC33EF0826BD0D87,
    0x6A78E45857B986C2,
    0x19666157C5281A10,
    0x237FF620135CC9CC,
    0x41818555B29CEA32,
    0x58389EF0231AD1F1,
};

inline constexpr Fraction<8> kQuarterPi = {
    0xC90FDAA22168C234, 0xC4C6628B80DC1CD1, 0x29024E088A67CC74, 0x020BBEA63B139B22,
    0x514A08798E3404DD, 0xEF9519B3CD3A431B, 0x302B0A6DF25F1437, 0x4FE1356D6D51C245,
};

inline constexpr Fraction<9> kLogarithmOf2InWords = {
    0xB17217F7D1CF79AB, 0xC9E3B39803F2F6AF, 0x40F343267298B62D,
    0x8A0D175B8BAAFA2B, 0xE7B876206DEBAC98, 0x559552FB4AFA1B10,
    0xED2EAE35C1382144, 0x27573B291169B825, 0x3E96CA16224AE8C5,
};

}  // namespace corvantis

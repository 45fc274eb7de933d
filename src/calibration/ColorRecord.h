#pragma once

// Palette indices (0..7, see MeasureTables) for the parts of a measurement
// drawing. Colours are looked up at draw time, never stored as values. The
// member defaults are what a fresh installation sees: everything white.
struct ColorRecord
{
    int m_ctCoord = 1; // inner cross of a coordinate point
    int m_ctRuler = 1; // strokes of all shapes
    int m_ctAdjust = 1; // handles and the outer mark of a coordinate point
    int m_ctText = 1; // label text

    bool operator==(const ColorRecord&) const = default;
};

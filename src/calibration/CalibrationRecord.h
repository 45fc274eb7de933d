#pragma once

// How long one overlay pixel is, shared by every shape of a manager through a
// pointer, so a new calibration shows in every label at once. The member
// defaults are what a fresh installation sees (settings missing); the element
// manager starts from its own values before the settings are loaded.
struct CalibrationRecord
{
    int m_rtUnit = 1; // index into the unit table: 0 um, 1 mm, 2 cm, 3 dm, 4 inch
    double m_dcxPerPixel = 0.2; // real units per pixel along x
    double m_dcyPerPixel = 0.2; // real units per pixel along y
    double m_dcxReal = 0.2; // real length the ruler's x arm was declared to measure
    double m_dcyReal = 0.2; // the same for the y arm

    bool operator==(const CalibrationRecord&) const = default;
};

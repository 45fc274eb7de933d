#pragma once

// Results of the capture operations, in the platform's HRESULT style: zero
// or positive is success, negative is failure.
inline constexpr int S_OK = 0;
inline constexpr int S_FALSE = 1;
inline constexpr int E_FAIL = static_cast<int>(0x80004005u);
inline constexpr int E_POINTER = static_cast<int>(0x80004003u);
inline constexpr int E_INVALIDARG = static_cast<int>(0x80070057u);

inline constexpr bool SUCCEEDED(int hr)
{
    return hr >= 0;
}
inline constexpr bool FAILED(int hr)
{
    return hr < 0;
}

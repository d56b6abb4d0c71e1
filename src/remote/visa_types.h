// The types and constants of the VISA interface that the program uses. The library itself is
// found at run time only, so they are written here.
#pragma once

#include <QtGlobal>

using ViStatus = qint32; // 0 success, negative error, positive warning
using ViSession = quint32;
using ViFindList = quint32;
using ViAttr = quint32;
using ViAttrState = quintptr; // as wide as a pointer

constexpr ViStatus visaSuccess = 0;

constexpr ViAttr VI_ATTR_TMO_VALUE = 0x3FFF001A;
constexpr ViAttr VI_ATTR_WR_BUF_OPER_MODE = 0x3FFF002D;
constexpr ViAttr VI_ATTR_RM_SESSION = 0x3FFF00C4;

constexpr ViAttrState VI_FLUSH_ON_ACCESS = 1;
constexpr quint16 VI_READ_BUF = 1;
constexpr quint16 VI_WRITE_BUF = 2;
constexpr quint16 VI_GPIB_REN_ADDRESS_GTL = 6;

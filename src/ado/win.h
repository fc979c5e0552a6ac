#pragma once

// The platform's headers, in the one order that they compile in.
// clang-format off
#include <windows.h>
#include <unknwn.h>
#include <oaidl.h>
#include <oleauto.h>
#include <objbase.h>
// clang-format on

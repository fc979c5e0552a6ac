# Cross-compiles for Windows: -DCMAKE_TOOLCHAIN_FILE=cmake/mingw.cmake -DMINGW_ARCH=x86_64|i686.
# The posix flavour of the compiler is named on purpose: the other one lacks std::mutex.
set(CMAKE_SYSTEM_NAME Windows)
if(NOT MINGW_ARCH)
  set(MINGW_ARCH x86_64)
endif()
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES MINGW_ARCH)
set(CMAKE_SYSTEM_PROCESSOR ${MINGW_ARCH})
set(prefix ${MINGW_ARCH}-w64-mingw32)
set(CMAKE_C_COMPILER ${prefix}-gcc-posix)
set(CMAKE_CXX_COMPILER ${prefix}-g++-posix)
set(CMAKE_RC_COMPILER ${prefix}-windres)
set(AZCOLL_WIDL ${prefix}-widl)
set(CMAKE_FIND_ROOT_PATH /usr/${prefix})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# The run-time libraries go into the binaries: a library registered in a foreign program must not
# depend on files beside it.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -Wl,--enable-stdcall-fixup")

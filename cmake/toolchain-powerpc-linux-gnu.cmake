# Cross build for 32-bit big-endian PowerPC Linux with Debian's
# g++-powerpc-linux-gnu; tests and test discovery run under qemu-user
# (Debian's qemu-user), which finds the target's C and C++ runtime in the
# cross sysroot. scripts/test-ppc uses it:
#
#   cmake -S . -B build-ppc -G Ninja \
#         -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-powerpc-linux-gnu.cmake
#
# Debian ships no GoogleTest built for PowerPC: point QRX_GTEST_SOURCE_DIR at
# its sources (/usr/src/googletest) to build it with the tests.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR powerpc)

set(QRX_CROSS_TRIPLE powerpc-linux-gnu)
set(QRX_CROSS_SYSROOT /usr/${QRX_CROSS_TRIPLE})
set(CMAKE_C_COMPILER ${QRX_CROSS_TRIPLE}-gcc)
set(CMAKE_CXX_COMPILER ${QRX_CROSS_TRIPLE}-g++)

# Libraries and headers of the target only; programs (python3, bison, flex)
# are the host's. Package files may come from the host too: the one the
# build finds there is header-only (nlohmann-json, whose /usr/include the
# cross compiler searches last).
set(CMAKE_FIND_ROOT_PATH ${QRX_CROSS_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

find_program(QRX_QEMU_PPC qemu-ppc REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR ${QRX_QEMU_PPC} -L ${QRX_CROSS_SYSROOT})

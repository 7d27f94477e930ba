# 32-bit ARM with Debian's cross compiler; what was built runs in an emulator.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/bin/qemu-arm-static)
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)  # how GCC before version 7 passed arguments

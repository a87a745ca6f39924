# Everything comes from the system's packages (docs/architecture.md says which and why).

find_package(Qt6 6.4 REQUIRED COMPONENTS Core Network Gui Widgets Svg)
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  find_package(Qt6 6.4 REQUIRED COMPONENTS DBus)
endif()
if(TARNWICK_TESTS)
  find_package(Qt6 6.4 REQUIRED COMPONENTS Test)
endif()

set(QT_NO_CREATE_VERSIONLESS_TARGETS ON)
find_package(QCoro6 0.8 REQUIRED COMPONENTS Core)
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(MD4C REQUIRED IMPORTED_TARGET md4c)
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb)
endif()

# quarry_hardening: compiler and linker options that make our binaries harder to exploit. Linked
# privately, so users do not inherit them. The test `hardening` inspects the built files.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
add_library(quarry_hardening INTERFACE)
set_target_properties(quarry_hardening PROPERTIES INTERFACE_POSITION_INDEPENDENT_CODE ON)
# Functions are bound at load time, also because lazy binding saves all registers on the stack, and
# one of them may hold part of a secret.
target_link_options(quarry_hardening INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
string(FIND "${CMAKE_CXX_FLAGS}" _FORTIFY_SOURCE fortified)
math(EXPR fortified "${fortified} + 1")
if(NOT QUARRY_SANITIZE)
  target_compile_options(quarry_hardening INTERFACE
    -fstack-protector-strong -fstack-clash-protection -fcf-protection
    # Fortify needs optimisation. A distribution's own flags may set a higher level.
    $<$<NOT:$<CONFIG:Debug>>:$<$<NOT:$<BOOL:${fortified}>>:-D_FORTIFY_SOURCE=2>>)
endif()

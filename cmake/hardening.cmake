# quarry_hardening: how what we ship resists being taken over; for our own targets,
# never for users' ones. The test `hardening` looks at the built files.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
add_library(quarry_hardening INTERFACE)
set_target_properties(quarry_hardening PROPERTIES INTERFACE_POSITION_INDEPENDENT_CODE ON)
# Functions are bound at load, not only against tampering: to bind one at its first
# call saves all registers on the stack, and with them perhaps a secret.
target_link_options(quarry_hardening INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
string(FIND "${CMAKE_CXX_FLAGS}" _FORTIFY_SOURCE fortified)
math(EXPR fortified "${fortified} + 1")
if(NOT QUARRY_SANITIZE)
  target_compile_options(quarry_hardening INTERFACE
    -fstack-protector-strong -fstack-clash-protection -fcf-protection
    # Which needs optimisation. A distribution that builds us may ask for more.
    $<$<NOT:$<CONFIG:Debug>>:$<$<NOT:$<BOOL:${fortified}>>:-D_FORTIFY_SOURCE=2>>)
endif()

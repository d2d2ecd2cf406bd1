# quarry_sanitize: instruments a target with the sanitizers in QUARRY_SANITIZE (see the presets).
add_library(quarry_sanitize INTERFACE)
if(QUARRY_SANITIZE)
  target_compile_options(quarry_sanitize INTERFACE
    -fsanitize=${QUARRY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(quarry_sanitize INTERFACE -fsanitize=${QUARRY_SANITIZE})
endif()

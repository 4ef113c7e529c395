# The libraries that hazelmark-decoder reads foreign formats with. Where one is missing the program is built without
# its formats. HAZELMARK_DECODER_KINDS: those that are there.

set(HAZELMARK_DECODER_KINDS)
function(hazelmark_decoder_kind kind title)
  string(TOUPPER ${kind} name)
  pkg_check_modules(${name} QUIET IMPORTED_TARGET GLOBAL ${ARGN})
  if(${name}_FOUND)
    list(APPEND HAZELMARK_DECODER_KINDS ${kind})
    set(HAZELMARK_DECODER_KINDS ${HAZELMARK_DECODER_KINDS} PARENT_SCOPE)
  else()
    message(STATUS "No ${title}: built without ${ARGN}")
  endif()
endfunction()
hazelmark_decoder_kind(heif "HEIC and AVIF" libheif>=1.12)

# What the desktop calls their formats.
set(HAZELMARK_MIME_TYPES_heif "image/heic;image/heif;image/avif;")

pkg_check_modules(SECCOMP QUIET IMPORTED_TARGET GLOBAL libseccomp)
if(NOT SECCOMP_FOUND)
  message(STATUS "No libseccomp: decoders run with their limits alone")
endif()

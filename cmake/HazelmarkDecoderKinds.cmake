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
hazelmark_decoder_kind(jxl "JPEG XL" libjxl>=0.7 libjxl_threads>=0.7)
hazelmark_decoder_kind(jp2 "JPEG 2000" libopenjp2>=2.4)
hazelmark_decoder_kind(raw "camera raw" libraw_r)

# What the desktop calls their formats.
set(HAZELMARK_MIME_TYPES_heif "image/heic;image/heif;image/avif;")
set(HAZELMARK_MIME_TYPES_jxl "image/jxl;")
set(HAZELMARK_MIME_TYPES_jp2 "image/jp2;image/jpx;image/x-jp2-codestream;")
set(HAZELMARK_MIME_TYPES_raw
    "image/x-dcraw;image/x-adobe-dng;image/x-canon-cr2;image/x-canon-cr3;image/x-canon-crw;image/x-fuji-raf;\
image/x-kodak-dcr;image/x-kodak-kdc;image/x-minolta-mrw;image/x-nikon-nef;image/x-nikon-nrw;image/x-olympus-orf;\
image/x-panasonic-rw2;image/x-pentax-pef;image/x-sigma-x3f;image/x-sony-arw;image/x-sony-sr2;image/x-sony-srf;")

pkg_check_modules(SECCOMP QUIET IMPORTED_TARGET GLOBAL libseccomp)
if(NOT SECCOMP_FOUND)
  message(STATUS "No libseccomp: decoders run with their limits alone")
endif()

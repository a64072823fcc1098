# velmora_listing_parts(source image...): writes the C++ source with the listing's style sheet and with the named
# images, as symbols made of the vector files from which the icons are drawn.
function(velmora_listing_parts source)
  set(sheet ${CMAKE_CURRENT_SOURCE_DIR}/listing.css)
  file(READ ${sheet} style)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${sheet})

  set(symbols "")
  foreach(image IN LISTS ARGN)
    set(file ${PROJECT_SOURCE_DIR}/resources/${image}.svg)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    file(READ ${file} drawing)
    if(NOT drawing MATCHES "<svg[^>]* viewBox=\"([^\"]*)\"[^>]*>(.*)</svg>")
      message(FATAL_ERROR "${file}: no <svg> with a viewBox")
    endif()
    string(APPEND symbols "<symbol id=\"${image}\" viewBox=\"${CMAKE_MATCH_1}\">${CMAKE_MATCH_2}</symbol>\n")
  endforeach()
  string(REGEX REPLACE ">[ \n]+" ">" symbols "${symbols}")

  configure_file(ListingParts.cpp.in ${source} @ONLY)
endfunction()

# The files of which the page of `trvfiles view` consists.

# Sets `page_styles` and `page_scripts`, in the order of the page.
function(find_page_sources viewer)
  if(CMAKE_SCRIPT_MODE_FILE)
    file(GLOB styles "${viewer}/*.css")
  else()
    file(GLOB styles CONFIGURE_DEPENDS "${viewer}/*.css")
  endif()
  file(STRINGS "${viewer}/modules.txt" scripts REGEX "^[^#]")
  list(TRANSFORM scripts STRIP)
  list(FILTER scripts EXCLUDE REGEX "^$")
  list(TRANSFORM scripts PREPEND "${viewer}/")
  set(page_styles ${styles} PARENT_SCOPE)
  set(page_scripts ${scripts} PARENT_SCOPE)
endfunction()

# Sets `three_scripts`, in the order of the page.
function(find_three_sources three)
  set(scripts build/three.min.js examples/js/loaders/STLLoader.js examples/js/loaders/OBJLoader.js
    examples/js/loaders/PLYLoader.js examples/js/controls/OrbitControls.js)
  list(TRANSFORM scripts PREPEND "${three}/")
  set(three_scripts ${scripts} PARENT_SCOPE)
endfunction()

# Applies FRAMESINK_SANITIZE to all targets of this project, including tests.
if(FRAMESINK_SANITIZE)
  add_compile_options(-fsanitize=${FRAMESINK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${FRAMESINK_SANITIZE})
endif()

# FRAMESINK_SANITIZE applies to everything that is built here, tests included.
if(FRAMESINK_SANITIZE)
  add_compile_options(-fsanitize=${FRAMESINK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${FRAMESINK_SANITIZE})
endif()

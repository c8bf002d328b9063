# KVX_SANITIZE: for the whole build, because a sanitized library needs a sanitized host.
if(KVX_SANITIZE)
    add_compile_options(-fsanitize=${KVX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${KVX_SANITIZE})
endif()

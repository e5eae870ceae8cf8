target_link_libraries(test_LumenSA PRIVATE Kelp)
if(TARN_SANITIZE)
  target_compile_definitions(test_LumenSA PRIVATE TARN_SANITIZED)
endif()

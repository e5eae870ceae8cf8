target_include_directories(test_BackEndDefs PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/QuayCore) # FailureOf.h

# The two exports are no part of the library that tests link; the key table is the one that help and completion read.
target_sources(test_TarnFlows PRIVATE ${CMAKE_SOURCE_DIR}/Tools/TRN/TarnFlows/Exports.cpp)
target_link_libraries(test_TarnFlows PRIVATE TarnKeys)

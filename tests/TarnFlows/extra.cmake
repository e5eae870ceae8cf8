# The two exports are no part of the library that tests link.
target_sources(test_TarnFlows PRIVATE ${CMAKE_SOURCE_DIR}/Tools/TRN/TarnFlows/Exports.cpp)

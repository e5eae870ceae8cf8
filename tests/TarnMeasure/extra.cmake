find_package(PkgConfig REQUIRED)
pkg_check_modules(CAIRO REQUIRED IMPORTED_TARGET cairo) # Axes.h names its types
target_link_libraries(test_TarnMeasure PRIVATE TarnKeys PkgConfig::CAIRO)

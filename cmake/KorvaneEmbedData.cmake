# korvane_embed_csv(<out_header> <name> <csv>): turns a measured table (CSV with one header
# line) into a header of constexpr arrays, one per column, at build time.
function(korvane_embed_csv out_header name csv)
  add_custom_command(
    OUTPUT "${out_header}"
    COMMAND "${CMAKE_COMMAND}" -DIN=${csv} -DOUT=${out_header} -DNAME=${name}
            -P "${PROJECT_SOURCE_DIR}/cmake/CsvToHeader.cmake"
    DEPENDS "${csv}" "${PROJECT_SOURCE_DIR}/cmake/CsvToHeader.cmake"
    COMMENT "Embedding ${name} from ${csv}"
    VERBATIM)
endfunction()

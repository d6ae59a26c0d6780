# Compresses what Debian packages hold compressed, without names and times, so that equal sources
# give equal packages. Runs between installing and packing.
foreach(file share/man/man1/vek0.1 share/doc/vek0/changelog share/doc/vek0/changelog.Debian)
  execute_process(COMMAND gzip -9nf ${CPACK_TEMPORARY_DIRECTORY}/usr/${file}
                  COMMAND_ERROR_IS_FATAL ANY)
endforeach()

// Image library.

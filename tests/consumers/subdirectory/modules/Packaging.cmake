message(FATAL_ERROR "a module of this project, which nobody else may include")

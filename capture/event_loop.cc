namespace gromlit {}

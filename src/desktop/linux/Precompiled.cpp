// The headers that most files of the Linux desktop include are compiled with this one, once.

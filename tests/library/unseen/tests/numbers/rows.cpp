// Row {"compared", ..

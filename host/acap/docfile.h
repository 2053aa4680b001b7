// Drawing files into databases and back, the format told by content.

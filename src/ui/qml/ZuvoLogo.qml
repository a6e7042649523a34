import Zuvo

/// The pickaxe as the mark of the program.
PixelPickaxe { }

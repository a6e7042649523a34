import Zuvo

/// The pickaxe as the pages show it.
PixelPickaxe { }

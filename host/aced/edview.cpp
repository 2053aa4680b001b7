// World, display and pixel coordinates; zooming.

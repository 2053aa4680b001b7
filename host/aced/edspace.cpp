// Model space, paper space and layouts: which one is current.

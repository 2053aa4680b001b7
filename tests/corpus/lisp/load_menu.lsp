(if(null(menugroup "REVIEW"))(command "menuload" "C:\\menus\\review.mnu")) 

set x ¬
 to get ¬ 
 "é≠"
x does not equal x

NAME
OBJSENSE
    MAX
ROWS
 N a
 N b
 E c
COLUMNS
 x a 1 b 2
 x c 1e-3
RHS
 c 4
BOUNDS
 LI x -1e1
 BV b y
 FR x 0
 PL x
ENDATA

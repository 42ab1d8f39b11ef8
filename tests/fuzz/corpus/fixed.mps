NAME          FIXED
ROWS
 N  COST
 L  ROW 1
COLUMNS
    COL 1     COST                2.5   ROW 1               1.0
RHS
    RHS       ROW 1              10.0
BOUNDS
 UP BND       COL 1               4.0
ENDATA

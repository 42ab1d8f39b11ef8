* vexil: name x1 a b
* vexil: maximize obj
* vexil: row le le 2
NAME test FREE
ROWS
 N obj
 L le
 G ge
 E eq
COLUMNS
 m 'MARKER' 'INTORG'
 x1 obj 1 le 2
 x1 ge 3 eq 1e0
 y le .5 obj -1
 m 'MARKER' 'INTEND'
 z eq 7
RHS
 rhs le 1 ge 2.5
 rhs obj 7
RANGES
 r le -5 eq 3
BOUNDS
 UP b x1 4
 MI b y
 UP b y -2
 FX z 1e30
ENDATA

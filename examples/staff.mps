* A supermarket's week: who begins on a day works that day and the four behind it.
* How many have to begin on each day, so that every day has its staff at least cost?
NAME          STAFF
ROWS
 N  cost
 G  mon
 G  tue
 G  wed
 G  thu
 G  fri
 G  sat
 G  sun
COLUMNS
    MARKER    'MARKER'                 'INTORG'
    from_mon  cost               330   mon                  1
    from_mon  tue                  1   wed                  1
    from_mon  thu                  1   fri                  1
    from_tue  cost               330   tue                  1
    from_tue  wed                  1   thu                  1
    from_tue  fri                  1   sat                  1
    from_wed  cost               330   wed                  1
    from_wed  thu                  1   fri                  1
    from_wed  sat                  1   sun                  1
    from_thu  cost               330   thu                  1
    from_thu  fri                  1   sat                  1
    from_thu  sun                  1   mon                  1
    from_fri  cost               345   fri                  1
    from_fri  sat                  1   sun                  1
    from_fri  mon                  1   tue                  1
    from_sat  cost               375   sat                  1
    from_sat  sun                  1   mon                  1
    from_sat  tue                  1   wed                  1
    from_sun  cost               360   sun                  1
    from_sun  mon                  1   tue                  1
    from_sun  wed                  1   thu                  1
    MARKER    'MARKER'                 'INTEND'
RHS
    NEED      mon                 17   tue                 13
    NEED      wed                 15   thu                 19
    NEED      fri                 14   sat                 16
    NEED      sun                 11
BOUNDS
 PL PLAN      from_mon
 PL PLAN      from_tue
 PL PLAN      from_wed
 PL PLAN      from_thu
 PL PLAN      from_fri
 PL PLAN      from_sat
 PL PLAN      from_sun
ENDATA

(defun c:work (/ ss i ed s)
  (setq ss (ssget "_X" '((0 . "TEXT,MTEXT") (1 . "*e*"))) i 0)
  (if ss
    (while (< i (sslength ss))
      (setq ed (entget (ssname ss i)) s (cdr (assoc 1 ed)))
      (while (vl-string-search "e" s) (setq s (vl-string-subst "E" "e" s)))
      (entmod (subst (cons 1 s) (assoc 1 ed) ed))
      (setq i (1+ i))))
  (princ))

(defun c:work (/ ss i ed h)
  (setq ss (ssget "_X" '((0 . "TEXT,MTEXT,ATTDEF"))) i -1)
  (if ss
    (while (< (setq i (1+ i)) (sslength ss))
      (setq ed (entget (ssname ss i)) h (cdr (assoc 40 ed)))
      (cond ((< h 2.0) (entmod (subst (cons 40 2.5) (assoc 40 ed) ed)))
            ((> h 50.) (entmod (subst (cons 40 (* 2.0 (fix (/ h 2.0)))) (assoc 40 ed) ed))))))
  (prompt (strcat "\n" (itoa (if ss (sslength ss) 0)) " texts looked at"))
  (princ))
